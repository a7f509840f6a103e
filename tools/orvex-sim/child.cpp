#include "tools/orvex-sim/child.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "sim/pseudo_terminal.h"
#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

namespace {

constexpr int kSignalBase = 128;
constexpr std::string_view kPreload = "LD_PRELOAD=";
constexpr std::string_view kTemporaryPlace = "TMPDIR=";

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// In the new process: becomes the program, or tells why not.
[[noreturn]] void become(char* const* command, char* const* environment, const Inheritance& signals,
                         pid_t parent, int report) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() == parent) {
        ::sigaction(SIGPIPE, &signals.brokenPipe, nullptr);
        ::pthread_sigmask(SIG_SETMASK, &signals.blocked, nullptr);
        ::execvpe(command[0], command, environment);
    }
    const int error = errno;
    static_cast<void>(::write(report, &error, sizeof error) + 1);
    ::_exit(kNotFound);
}

/// What the new process tells; 0 when it has become the program.
int readReport(int report) {
    int error = 0;
    ssize_t count = 0;
    while ((count = ::read(report, &error, sizeof error)) < 0 && errno == EINTR) {
    }
    return count == sizeof error ? error : 0;
}

bool begins(const std::string& text, std::string_view start) {
    return text.compare(0, start.size(), start) == 0;
}

}  // namespace

Child::Child(const std::vector<std::string>& command, const std::vector<std::string>& environment,
             const Inheritance& signals) {
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> variables = pointersTo(environment);
    const pid_t parent = ::getpid();
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    const sim::Descriptor report(ends[0]);
    sim::Descriptor reporter(ends[1]);
    pid_ = ::fork();
    if (pid_ < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid_ == 0) {
        become(arguments.data(), variables.data(), signals, parent, reporter.get());
    }
    reporter = sim::Descriptor();
    if (const int error = readReport(report.get()); error != 0) {
        ::waitpid(pid_, nullptr, 0);
        throw Failure(error == ENOENT ? kNotFound : kCannotExecute,
                      "cannot run " + command.front() + ": " + errorText(error));
    }
}

Child::~Child() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
}

void Child::send(int signal) const noexcept {
    if (pid_ > 0) {
        ::kill(pid_, signal);
    }
}

std::optional<int> Child::status() {
    int status = 0;
    if (pid_ <= 0 || ::waitpid(pid_, &status, WNOHANG) != pid_) {
        return std::nullopt;
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalBase + WTERMSIG(status);
}

std::vector<std::string> childEnvironment(const std::string& preload,
                                          const std::optional<std::string>& temporaryPlace) {
    std::vector<std::string> environment;
    std::string preloads = std::string(kPreload) + preload;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (begins(text, kPreload) && text.size() > kPreload.size()) {
            preloads += ":" + text.substr(kPreload.size());
        } else if (!begins(text, kPreload) && !begins(text, kTemporaryPlace)) {
            environment.push_back(text);
        }
    }
    environment.push_back(preloads);
    if (temporaryPlace) {
        environment.push_back(std::string(kTemporaryPlace) + *temporaryPlace);
    }
    return environment;
}

}  // namespace orvex::tools
