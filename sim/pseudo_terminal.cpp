#include "sim/pseudo_terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orvex::sim {

namespace {

void require(bool succeeded, const char* call) {
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

Descriptor openMaster() {
    Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    require(master.get() >= 0, "posix_openpt");
    require(::grantpt(master.get()) == 0, "grantpt");
    require(::unlockpt(master.get()) == 0, "unlockpt");
    return master;
}

std::string slaveOf(int master) {
    std::array<char, 64> name{};
    errno = ::ptsname_r(master, name.data(), name.size());
    require(errno == 0, "ptsname_r");
    return name.data();
}

Descriptor openRaw(const std::string& slavePath) {
    Descriptor slave(::open(slavePath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    require(slave.get() >= 0, "open");
    termios settings{};
    require(::tcgetattr(slave.get(), &settings) == 0, "tcgetattr");
    ::cfmakeraw(&settings);
    require(::tcsetattr(slave.get(), TCSANOW, &settings) == 0, "tcsetattr");
    return slave;
}

std::string makeTemporaryDirectory() {
    std::string path = (std::filesystem::temp_directory_path() / "orvex-sim-XXXXXX").string();
    require(::mkdtemp(path.data()) != nullptr, "mkdtemp");
    return path;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

Descriptor::~Descriptor() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

TemporaryDirectory::TemporaryDirectory() : path_(makeTemporaryDirectory()) {}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

PseudoTerminal::PseudoTerminal(std::string link)
    : link_(std::move(link)),
      master_(openMaster()),
      slavePath_(slaveOf(master_.get())),
      slave_(openRaw(slavePath_)) {
    require(::symlink(slavePath_.c_str(), link_.c_str()) == 0, "symlink");
}

PseudoTerminal::~PseudoTerminal() {
    ::unlink(link_.c_str());
}

}  // namespace orvex::sim
