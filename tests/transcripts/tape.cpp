#include "tests/transcripts/tape.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/types.h>
#include <termios.h>
#include <unistd.h>

#include <cstdarg>
#include <ctime>
#include <utility>

namespace orvex_test {

namespace {

// The simulated device's thread has none: its calls are not taken down.
thread_local Tape* current_tape = nullptr;

}  // namespace

Tape::Tape(std::string port) : port_(std::move(port)) {
    current_tape = this;
}

Tape::~Tape() {
    current_tape = nullptr;
}

Tape* Tape::current() noexcept {
    return current_tape;
}

void Tape::add(Event::Kind kind, std::string_view text) {
    if (!running_) {
        return;
    }
    const bool goesOn = kind == Event::Kind::Received && !events_.empty() &&
                        events_.back().kind == kind && events_.back().text.back() != '\r';
    if (goesOn) {
        events_.back().text += text;
    } else {
        events_.push_back({kind, std::string(text)});
    }
}

void Tape::onOpen(std::string_view path, int descriptor) {
    if (path == port_) {
        descriptor_ = descriptor;
        add(Event::Kind::Port, descriptor < 0 ? "open fails" : "open");
    }
}

void Tape::onClose() {
    descriptor_ = -1;
    add(Event::Kind::Port, "close");
}

bool Tape::isPort(int descriptor) const {
    return descriptor >= 0 && descriptor == descriptor_;
}

namespace {

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// The tape that is to take down a call on this descriptor, or null.
Tape* tapeOf(int descriptor) {
    return current_tape != nullptr && current_tape->isPort(descriptor) ? current_tape : nullptr;
}

void noteRead(Tape& tape, const void* buffer, ssize_t count) {
    if (count > 0) {
        tape.add(Event::Kind::Received,
                 {static_cast<const char*>(buffer), static_cast<std::size_t>(count)});
    } else {
        tape.add(Event::Kind::Port, count == 0 ? "nothing to read" : "read fails");
    }
}

void noteWrite(Tape& tape, const void* buffer, std::size_t size, ssize_t count) {
    tape.add(Event::Kind::Sent, {static_cast<const char*>(buffer), size});
    if (count < 0 || static_cast<std::size_t>(count) != size) {
        tape.add(Event::Kind::Port, "write fails");
    }
}

}  // namespace

}  // namespace orvex_test

using orvex_test::Event;
using orvex_test::real;
using orvex_test::Tape;
using orvex_test::tapeOf;

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    static const auto call = real<int(const char*, int, ...)>("open");
    const int descriptor = call(path, flags, mode);
    if (Tape* const tape = Tape::current()) {
        tape->onOpen(path, descriptor);
    }
    return descriptor;
}

int close(int descriptor) {
    if (Tape* const tape = tapeOf(descriptor)) {
        tape->onClose();
    }
    static const auto call = real<int(int)>("close");
    return call(descriptor);
}

ssize_t read(int descriptor, void* buffer, std::size_t size) {
    static const auto call = real<ssize_t(int, void*, std::size_t)>("read");
    Tape* const tape = tapeOf(descriptor);
    if (tape == nullptr) {
        return call(descriptor, buffer, size);
    }
    const ssize_t count = tape->expectsSilence() ? 0 : call(descriptor, buffer, size);
    orvex_test::noteRead(*tape, buffer, count);
    return count;
}

ssize_t write(int descriptor, const void* buffer, std::size_t size) {
    static const auto call = real<ssize_t(int, const void*, std::size_t)>("write");
    Tape* const tape = tapeOf(descriptor);
    const ssize_t count = call(descriptor, buffer, size);
    if (tape != nullptr) {
        orvex_test::noteWrite(*tape, buffer, size, count);
    }
    return count;
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, request);
    const auto argument = va_arg(arguments, unsigned long);
    va_end(arguments);
    if (Tape* const tape = tapeOf(descriptor)) {
        const bool purges = request == TCFLSH && argument == TCIOFLUSH;
        tape->add(Event::Kind::Port, purges ? "purge" : "another ioctl");
    }
    static const auto call = real<int(int, unsigned long, ...)>("ioctl");
    return call(descriptor, request, argument);
}

int nanosleep(const timespec* asked, timespec* remaining) {
    if (Tape* const tape = Tape::current()) {
        const long milliseconds = asked->tv_sec * 1000 + asked->tv_nsec / 1'000'000;
        tape->add(Event::Kind::Port, "pause " + std::to_string(milliseconds) + " ms");
        return 0;
    }
    static const auto call = real<int(const timespec*, timespec*)>("nanosleep");
    return call(asked, remaining);
}

}  // extern "C"
