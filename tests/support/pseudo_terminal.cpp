#include "tests/support/pseudo_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>

#include "tests/support/waiting.h"

namespace orvex_test {

namespace {

constexpr int kPatience = 10'000;  // ms

std::size_t bytesWaiting(int descriptor) {
    int count = 0;
    ::ioctl(descriptor, FIONREAD, &count);
    return static_cast<std::size_t>(count);
}

bool readable(int descriptor, int patience) {
    pollfd waited{descriptor, POLLIN, 0};
    return ::poll(&waited, 1, patience) == 1;
}

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

}  // namespace

PseudoTerminal::PseudoTerminal() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    require(master_ >= 0 && ::grantpt(master_) == 0 && ::unlockpt(master_) == 0, "no terminal");
    path_ = ::ptsname(master_);
    own_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    require(own_ >= 0, "the terminal cannot be opened");
}

PseudoTerminal::~PseudoTerminal() {
    hangUp();
    ::close(own_);
}

termios PseudoTerminal::settings() const {
    termios settings{};
    require(::tcgetattr(master_, &settings) == 0, "tcgetattr");
    return settings;
}

void PseudoTerminal::apply(const termios& settings) const {
    require(::tcsetattr(master_, TCSANOW, &settings) == 0, "tcsetattr");
}

std::string PseudoTerminal::takeSent(std::size_t count) const {
    std::string taken;
    while (taken.size() < count && readable(master_, kPatience)) {
        std::string part(count - taken.size(), '\0');
        const ssize_t got = ::read(master_, part.data(), part.size());
        if (got <= 0) {
            break;
        }
        taken.append(part, 0, static_cast<std::size_t>(got));
    }
    return taken;
}

bool PseudoTerminal::nothingSent() const {
    return !readable(master_, 0);
}

void PseudoTerminal::send(std::string_view bytes) const {
    const ssize_t written = ::write(master_, bytes.data(), bytes.size());
    require(written == static_cast<ssize_t>(bytes.size()), "write");
}

void PseudoTerminal::answer(std::string_view bytes) const {
    const std::size_t before = unread();
    send(bytes);
    require(waitUntil([&] { return unread() >= before + bytes.size(); }), "the answer is lost");
}

std::size_t PseudoTerminal::unread() const {
    return bytesWaiting(own_);
}

void PseudoTerminal::hangUp() {
    if (master_ >= 0) {
        ::close(master_);
        master_ = -1;
    }
}

std::size_t PseudoTerminal::openDescriptors() const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        count += std::filesystem::read_symlink(entry.path(), ignored) == path_ ? 1 : 0;
    }
    return count - 1;
}

bool sameSettings(const termios& a, const termios& b) {
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag &&
           a.c_lflag == b.c_lflag && a.c_line == b.c_line &&
           std::equal(std::begin(a.c_cc), std::end(a.c_cc), std::begin(b.c_cc));
}

}  // namespace orvex_test
