#include "tools/orvexctl/screen.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <string_view>

namespace orvex::tools {

namespace {

constexpr std::string_view kEnter = "\033[?1049h\033[?25l";
constexpr std::string_view kLeave = "\033[?25h\033[?1049l";

// Written before `borrowed` is set, read by signal handlers after it.
termios settingsBefore;
volatile std::sig_atomic_t borrowed = 0;

void send(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = ::write(STDOUT_FILENO, text.data(), text.size());
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace

Screen::Screen() {
    if (::tcgetattr(STDIN_FILENO, &settingsBefore) != 0) {
        return;
    }
    borrowed = 1;
    termios keys = settingsBefore;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    keys.c_cc[VMIN] = 1;
    keys.c_cc[VTIME] = 0;
    ::tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    send(kEnter);
}

Screen::~Screen() {
    restoreScreen();
}

void restoreScreen() noexcept {
    if (borrowed != 0) {
        borrowed = 0;
        send(kLeave);
        ::tcsetattr(STDIN_FILENO, TCSANOW, &settingsBefore);
    }
}

char awaitKey(std::chrono::milliseconds timeout) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    char key = 0;
    if (::poll(&input, 1, static_cast<int>(timeout.count())) > 0) {
        // The end of a terminal counts as a wish to leave.
        return ::read(STDIN_FILENO, &key, 1) == 1 ? key : 'q';
    }
    return 0;
}

}  // namespace orvex::tools
