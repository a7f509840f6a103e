#include "tests/fuzz/support/fake_port.h"

#include <fcntl.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <ctime>

#include "tests/fuzz/support/properties.h"

namespace orvex_fuzz {

namespace {

constexpr int kDescriptor = 9001;
constexpr tcflag_t kInputModes = 0xA5A5;
constexpr int kSilences = 3;

FakePort* current = nullptr;

int failed(int error) {
    errno = error;
    return -1;
}

/// Input at another speed than output.
termios withOddSpeeds(termios settings) {
    constexpr tcflag_t kNoInputSpeed = 020000000000;
    ::cfsetospeed(&settings, B38400);
    settings.c_iflag |= kNoInputSpeed;
    return settings;
}

}  // namespace

FakePort::FakePort(Script& script) : script_(&script) {
    holds(current == nullptr, "one port at a time");
    settings_.c_iflag = kInputModes;
    settingsBefore_ = settings_;
    exchanges.reserve(16);
    current = this;
}

FakePort::~FakePort() {
    holds(!isOpen_, "no port stays open");
    current = nullptr;
}

void FakePort::setFaults(std::string_view letters) noexcept {
    const auto has = [letters](char letter) {
        return letters.find(letter) != std::string_view::npos;
    };
    faults_ = {has('o'), has('g'), has('s'), has('c'), has('d'), has('z'), has('v')};
}

bool FakePort::isRestored() const noexcept {
    return std::memcmp(&settings_, &settingsBefore_, sizeof settings_) == 0;
}

std::size_t FakePort::comingReplySize() const noexcept {
    Script script = *script_;
    Reply reply(script.nextReply().value_or("\\-"));
    std::size_t size = 0;
    for (Answer answer = reply.next(); answer.kind == Answer::Kind::Byte; answer = reply.next()) {
        ++size;
        if (answer.byte == '\r') {
            break;
        }
    }
    return size;
}

int FakePort::open() {
    holds(!isOpen_, "a port is opened once at a time");
    if (faults_.open) {
        return failed(ENOENT);
    }
    isOpen_ = true;
    settingsBefore_ = faults_.oddSpeeds ? withOddSpeeds(settings_) : settings_;
    descriptor_ = faults_.isLowest ? 0 : kDescriptor;
    return descriptor_;
}

/// The port's second descriptor; the first one is closed next.
int FakePort::duplicate() {
    holds(isOpen_ && descriptor_ == 0, "only descriptor 0 is exchanged");
    return faults_.duplicate ? failed(EMFILE) : kDescriptor;
}

int FakePort::close(int descriptor) {
    holds(isOpen_, "only an open port is closed");
    if (descriptor == 0 && descriptor_ == 0 && !faults_.duplicate) {
        descriptor_ = kDescriptor;
        return 0;
    }
    holds(descriptor == descriptor_, "the port's own descriptor is closed");
    isOpen_ = false;
    return faults_.close ? failed(EIO) : 0;
}

void FakePort::requireOpen(int descriptor) const {
    holds(isOpen_ && descriptor == descriptor_ && descriptor != 0, "the port is open");
}

void FakePort::beginReply() {
    const auto line = script_->nextReply();
    reply_ = Reply(line.value_or("\\-"));
    silence_ = 0;
    exchanges.emplace_back();
}

int FakePort::refuse(Exchange::Fault fault) {
    if (exchanges.back().fault == Exchange::Fault::None) {
        exchanges.back().fault = fault;
    }
    return failed(EIO);
}

int FakePort::purge(int descriptor) {
    requireOpen(descriptor);
    beginReply();
    isPurged_ = true;
    return reply_.failsPurge() ? refuse(Exchange::Fault::Purge) : 0;
}

ssize_t FakePort::write(int descriptor, const char* data, std::size_t size) {
    requireOpen(descriptor);
    if (!isPurged_) {
        beginReply();
    }
    isPurged_ = false;
    exchanges.back().request.assign(data, size);
    if (reply_.failsWrite()) {
        return refuse(Exchange::Fault::Write);
    }
    if (reply_.cutsWrite()) {
        exchanges.back().fault = Exchange::Fault::Write;
        return static_cast<ssize_t>(size) - 1;
    }
    return static_cast<ssize_t>(size);
}

ssize_t FakePort::read(int descriptor, char* buffer, std::size_t size) {
    requireOpen(descriptor);
    holds(size > 0, "a read asks for something");
    if (exchanges.empty()) {
        beginReply();
    }
    const Answer answer = reply_.next();
    if (answer.kind == Answer::Kind::Failure) {
        return refuse(Exchange::Fault::Read);
    }
    if (answer.kind == Answer::Kind::TimeOut) {
        if (++silence_ >= kSilences) {
            refuse(Exchange::Fault::Silence);
        }
        return 0;
    }
    silence_ = 0;
    *buffer = answer.byte;
    exchanges.back().reply += answer.byte;
    return 1;
}

int FakePort::getAttributes(int descriptor, termios& settings) {
    requireOpen(descriptor);
    if (faults_.getAttributes) {
        return failed(EIO);
    }
    settings = faults_.oddSpeeds ? withOddSpeeds(settings_) : settings_;
    return 0;
}

int FakePort::setAttributes(int descriptor, const termios& settings) {
    requireOpen(descriptor);
    if (faults_.setAttributes) {
        return failed(EIO);
    }
    settings_ = settings;
    holds(isRestored() || (settings.c_cc[VMIN] == 0 && (settings.c_lflag & ICANON) == 0),
          "the port is raw, or as it was before");
    return 0;
}

}  // namespace orvex_fuzz

using orvex_fuzz::current;

// The linker's names for the wrapped calls and for what they wrap.
extern "C" {

int __real_open(const char* path, int flags, ...);
int __real_close(int descriptor);
ssize_t __real_read(int descriptor, void* buffer, size_t size);
ssize_t __real_write(int descriptor, const void* data, size_t size);
int __real_ioctl(int descriptor, unsigned long request, ...);
int __real_fcntl(int descriptor, int command, ...);
int __real_tcgetattr(int descriptor, termios* settings);
int __real_tcsetattr(int descriptor, int action, const termios* settings);
int __real_nanosleep(const timespec* asked, timespec* remaining);

int __wrap_open(const char* path, int flags, ...) {
    if (current != nullptr) {
        return current->open();
    }
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return __real_open(path, flags, mode);
}

int __wrap_close(int descriptor) {
    return current != nullptr ? current->close(descriptor) : __real_close(descriptor);
}

ssize_t __wrap_read(int descriptor, void* buffer, size_t size) {
    return current != nullptr ? current->read(descriptor, static_cast<char*>(buffer), size)
                              : __real_read(descriptor, buffer, size);
}

ssize_t __wrap_write(int descriptor, const void* data, size_t size) {
    return current != nullptr ? current->write(descriptor, static_cast<const char*>(data), size)
                              : __real_write(descriptor, data, size);
}

int __wrap_ioctl(int descriptor, unsigned long request, ...) {
    std::va_list arguments;
    va_start(arguments, request);
    const auto argument = va_arg(arguments, unsigned long);
    va_end(arguments);
    if (current == nullptr) {
        return __real_ioctl(descriptor, request, argument);
    }
    orvex_fuzz::holds(request == TCFLSH && argument == TCIOFLUSH, "a port is purged both ways");
    return current->purge(descriptor);
}

int __wrap_fcntl(int descriptor, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    const auto argument = va_arg(arguments, long);
    va_end(arguments);
    return current != nullptr ? current->duplicate() : __real_fcntl(descriptor, command, argument);
}

int __wrap_tcgetattr(int descriptor, termios* settings) {
    return current != nullptr ? current->getAttributes(descriptor, *settings)
                              : __real_tcgetattr(descriptor, settings);
}

int __wrap_tcsetattr(int descriptor, int action, const termios* settings) {
    return current != nullptr ? current->setAttributes(descriptor, *settings)
                              : __real_tcsetattr(descriptor, action, settings);
}

int __wrap_nanosleep(const timespec* asked, timespec* remaining) {
    if (current == nullptr) {
        return __real_nanosleep(asked, remaining);
    }
    current->pause(asked->tv_sec * 1000 + asked->tv_nsec / 1'000'000);
    return 0;
}

}  // extern "C"
