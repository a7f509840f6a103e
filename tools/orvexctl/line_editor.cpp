#include "tools/orvexctl/line_editor.h"

#include <cstdio>
// readline needs <cstdio> before it.
#include <readline/history.h>
#include <readline/readline.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>
#include <utility>

#include "tools/orvexctl/interrupts.h"
#include "tools/orvexctl/terminal.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr int kHistoryLength = 1000;

struct Free {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

// readline calls back without a place for one's own data.
LineEditor::Completion& completion() {
    static LineEditor::Completion current;
    return current;
}

char* nextMatch(const char* text, int state) {
    static std::vector<std::string> matches;
    static std::size_t next = 0;
    if (state == 0) {
        const std::string line(rl_line_buffer);
        matches = completion()(line.substr(0, line.size() - std::strlen(text)));
        next = 0;
    }
    while (next < matches.size()) {
        const std::string& match = matches[next++];
        if (match.rfind(text, 0) == 0) {
            return ::strdup(match.c_str());
        }
    }
    return nullptr;
}

char** complete(const char* text, int /*start*/, int /*end*/) {
    rl_attempted_completion_over = 1;
    return rl_completion_matches(text, nextMatch);
}

int endLineWhenInterrupted() {
    if (isInterrupted()) {
        rl_done = 1;
    }
    return 0;
}

/// The file for the history, or nothing when there is no place for it.
std::string makeHistoryFile() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const char* home = std::getenv("HOME");
    fs::path directory;
    if (state != nullptr && *state == '/') {
        directory = state;
    } else if (home != nullptr && *home != '\0') {
        directory = fs::path(home) / ".local" / "state";
    } else {
        return "";
    }
    std::error_code failed;
    fs::create_directories(directory / "orvexctl", failed);
    return failed ? "" : (directory / "orvexctl" / "history").string();
}

}  // namespace

LineEditor::LineEditor(std::string prompt, Completion tell)
    : prompt_(std::move(prompt)), interactive_(inputIsTerminal()) {
    if (!interactive_) {
        return;
    }
    completion() = std::move(tell);
    rl_readline_name = "orvexctl";
    rl_attempted_completion_function = complete;
    rl_signal_event_hook = endLineWhenInterrupted;
    rl_event_hook = endLineWhenInterrupted;
    historyFile_ = makeHistoryFile();
    ::using_history();
    ::read_history(historyFile_.c_str());
}

LineEditor::~LineEditor() {
    if (interactive_ && !historyFile_.empty()) {
        ::write_history(historyFile_.c_str());
        ::history_truncate_file(historyFile_.c_str(), kHistoryLength);
    }
}

std::optional<std::string> LineEditor::next() {
    if (interactive_) {
        return nextFromTerminal();
    }
    std::string line;
    return std::getline(std::cin, line) ? std::optional(line) : std::nullopt;
}

std::optional<std::string> LineEditor::nextFromTerminal() {
    const std::unique_ptr<char, Free> line(::readline(prompt_.c_str()));
    if (line == nullptr) {
        std::cout << std::endl;
        return std::nullopt;
    }
    if (isInterrupted()) {
        std::cout << std::endl;
        return "";
    }
    if (*line != '\0') {
        ::add_history(line.get());
    }
    return std::string(line.get());
}

}  // namespace orvex::tools
