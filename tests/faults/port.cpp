#include "tests/faults/port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "tests/faults/real_calls.h"

namespace orvex_faults {

namespace {

Port* current_port = nullptr;

constexpr int kReplyTimeout = 10'000;  // Milliseconds; a reply comes at once.

termios settingsAtFirst() {
    termios settings{};
    settings.c_iflag = ICRNL | IXON;
    settings.c_oflag = OPOST | ONLCR;
    settings.c_cflag = CS7 | PARENB | CREAD;
    settings.c_lflag = ISIG | ICANON | ECHO;
    ::cfsetispeed(&settings, B1200);
    ::cfsetospeed(&settings, B1200);
    return settings;
}

}  // namespace

Port::Port(std::string path) : path_(std::move(path)) {
    current_port = this;
}
Port::~Port() {
    current_port = nullptr;
}

Port* Port::current() noexcept {
    return current_port;
}

Port* Port::behind(int descriptor) noexcept {
    const bool isOpen = current_port != nullptr && current_port->open_.count(descriptor) != 0;
    return isOpen ? current_port : nullptr;
}

DirectPort::DirectPort(const orvex::sim::DeviceSetup& setup)
    : Port("/dev/ttyACM7"), conversation_(setup), settings_(settingsAtFirst()) {}

int DirectPort::open(int flags) {
    conversation_.forgetPartialRequest();
    unread_.clear();
    return real().open("/dev/null", flags);
}

ssize_t DirectPort::read(int /*descriptor*/, void* buffer, std::size_t size) {
    const std::size_t count = std::min(size, unread_.size());
    std::memcpy(buffer, unread_.data(), count);
    unread_.erase(0, count);
    return static_cast<ssize_t>(count);
}

ssize_t DirectPort::write(int /*descriptor*/, const void* bytes, std::size_t size) {
    unread_ += conversation_.exchange({static_cast<const char*>(bytes), size});
    return static_cast<ssize_t>(size);
}

int DirectPort::getSettings(int /*descriptor*/, termios* settings) {
    *settings = settings_;
    return 0;
}

int DirectPort::setSettings(int /*descriptor*/, const termios* settings) {
    settings_ = *settings;
    return 0;
}

int DirectPort::discard(int /*descriptor*/) {
    unread_.clear();
    return 0;
}

TerminalPort::TerminalPort(std::unique_ptr<orvex::sim::SimulatedDevice> device)
    : Port(device->path()), device_(std::move(device)) {}

int TerminalPort::open(int flags) {
    return real().open(path().c_str(), flags);
}

ssize_t TerminalPort::read(int descriptor, void* buffer, std::size_t size) {
    return real().read(descriptor, buffer, size);
}

ssize_t TerminalPort::write(int descriptor, const void* bytes, std::size_t size) {
    return real().write(descriptor, bytes, size);
}

int TerminalPort::getSettings(int descriptor, termios* settings) {
    return real().tcgetattr(descriptor, settings);
}

int TerminalPort::setSettings(int descriptor, const termios* settings) {
    return real().tcsetattr(descriptor, TCSANOW, settings);
}

int TerminalPort::discard(int descriptor) {
    return real().ioctl(descriptor, TCFLSH, static_cast<unsigned long>(TCIOFLUSH));
}

void TerminalPort::awaitReply(int descriptor) {
    pollfd waiting{descriptor, POLLIN, 0};
    ::poll(&waiting, 1, kReplyTimeout);
}

termios TerminalPort::settings() {
    const int descriptor = real().open(device_->slavePath().c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    real().tcgetattr(descriptor, &settings);
    real().close(descriptor);
    return settings;
}

}  // namespace orvex_faults
