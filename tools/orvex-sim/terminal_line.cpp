#include "tools/orvex-sim/terminal_line.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

namespace {

sim::Descriptor openLine(const std::string& path) {
    const int line = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (line < 0) {
        throw Failure(kSystemRefused, "--tty " + path + ": " + errorText(errno));
    }
    return sim::Descriptor(line);
}

}  // namespace

TerminalLine::TerminalLine(const std::string& path) : line_(openLine(path)) {
    if (::tcgetattr(descriptor(), &before_) != 0) {
        throw Failure(
            errno == ENOTTY ? kBadInput : kSystemRefused,
            "--tty " + path + ": " + (errno == ENOTTY ? "is no terminal" : errorText(errno)));
    }
    termios raw = before_;
    ::cfmakeraw(&raw);
    raw.c_cflag |= CLOCAL | CREAD;
    ::cfsetspeed(&raw, B9600);
    if (::tcsetattr(descriptor(), TCSANOW, &raw) != 0) {
        throw Failure(kSystemRefused, "--tty " + path + ": " + errorText(errno));
    }
}

TerminalLine::~TerminalLine() {
    ::tcsetattr(descriptor(), TCSANOW, &before_);
}

}  // namespace orvex::tools
