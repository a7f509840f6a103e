#include "tests/support/child_program.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace orvex_test {

namespace {

struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category(), "pipe2");
        }
    }
    std::array<int, 2> ends{};
};

std::vector<char*> argumentsOf(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    return arguments;
}

int exitStatus(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

ChildProgram::ChildProgram(const std::vector<std::string>& command) {
    const Pipe input;
    const Pipe output;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input.ends[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.ends[1], STDERR_FILENO);
    const int error = ::posix_spawn(&process_, command[0].c_str(), &actions, nullptr,
                                    argumentsOf(command).data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(input.ends[0]);
    ::close(output.ends[1]);
    input_ = input.ends[1];
    output_ = output.ends[0];
    if (error != 0) {
        process_ = -1;
        throw std::system_error(error, std::generic_category(), command[0]);
    }
}

ChildProgram::~ChildProgram() {
    ::close(input_);
    ::close(output_);
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
}

std::vector<std::string> ChildProgram::linesUntil(const std::string& text) {
    std::vector<std::string> lines;
    for (std::string line; readLine(line);) {
        if (line == text) {
            break;
        }
        lines.push_back(line);
    }
    return lines;
}

std::string ChildProgram::nextLine() {
    std::string line;
    readLine(line);
    return line;
}

void ChildProgram::say(const std::string& line) {
    const std::string bytes = line + "\n";
    static_cast<void>(!::write(input_, bytes.data(), bytes.size()));
}

std::vector<std::string> ChildProgram::finish() {
    std::vector<std::string> lines;
    for (std::string line; readLine(line);) {
        lines.push_back(line);
    }
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    status_ = exitStatus(status);
    return lines;
}

/// @return false at the end of the output
bool ChildProgram::readLine(std::string& line) {
    std::size_t end = 0;
    while ((end = unread_.find('\n')) == std::string::npos) {
        std::array<char, 4096> part{};
        const ssize_t count = ::read(output_, part.data(), part.size());
        if (count <= 0) {
            line = unread_;
            unread_.clear();
            return !line.empty();
        }
        unread_.append(part.data(), static_cast<std::size_t>(count));
    }
    line = unread_.substr(0, end);
    unread_.erase(0, end + 1);
    return true;
}

}  // namespace orvex_test
