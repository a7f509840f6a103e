// The system calls on ports, as the library finds them: definitions of the program come before the
// C library's.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <optional>

#include "tests/faults/injector.h"
#include "tests/faults/port.h"
#include "tests/faults/real_calls.h"
#include "tests/faults/sink_calls.h"

using orvex_faults::Call;
using orvex_faults::Effect;
using orvex_faults::Fault;
using orvex_faults::injector;
using orvex_faults::isInsideLibrary;
using orvex_faults::OutsideLibrary;
using orvex_faults::Port;
using orvex_faults::real;

namespace {

int failed(const Fault& fault) {
    errno = fault.error;
    return -1;
}

/// The port behind a descriptor, for a call of the library.
Port* portBehind(int descriptor) {
    return isInsideLibrary() ? Port::behind(descriptor) : nullptr;
}

ssize_t writeToPort(Port& port, int descriptor, const void* bytes, std::size_t size) {
    auto& history = port.history(descriptor);
    const auto fault = injector().next(Call::Write, history, size);
    ++history.requests;
    if (!fault) {
        const OutsideLibrary test;
        return port.write(descriptor, bytes, size);
    }
    if (fault->effect == Effect::WritesShort) {
        return static_cast<ssize_t>(size) - 1;
    }
    return failed(*fault);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (!isInsideLibrary() || Port::current() == nullptr || Port::current()->path() != path) {
        return orvex_faults::openSink(path, flags, mode);
    }
    if (const auto fault = injector().next(Call::Open)) {
        return failed(*fault);
    }
    const OutsideLibrary test;
    const int descriptor = Port::current()->open(flags);
    Port::current()->opened(descriptor);
    return descriptor;
}

int close(int descriptor) {
    Port* port = portBehind(descriptor);
    if (port == nullptr) {
        return orvex_faults::closeSink(descriptor);
    }
    const auto fault = injector().next(Call::Close, port->history(descriptor));
    const OutsideLibrary test;
    port->closed(descriptor);
    const int closed = real().close(descriptor);
    return fault ? failed(*fault) : closed;
}

int fcntl(int descriptor, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    const auto argument = va_arg(arguments, unsigned long);
    va_end(arguments);
    Port* port = portBehind(descriptor);
    if (port == nullptr || command != F_DUPFD) {
        return real().fcntl(descriptor, command, argument);
    }
    port->history(descriptor).isDuplicated = true;
    if (const auto fault = injector().next(Call::Duplicate)) {
        return failed(*fault);
    }
    const OutsideLibrary test;
    const int higher = real().fcntl(descriptor, command, argument);
    port->opened(higher);
    return higher;
}

ssize_t read(int descriptor, void* buffer, std::size_t size) {
    Port* port = portBehind(descriptor);
    if (port == nullptr) {
        return real().read(descriptor, buffer, size);
    }
    const auto fault = injector().next(Call::Read, port->history(descriptor));
    const OutsideLibrary test;
    if (!fault) {
        return port->read(descriptor, buffer, size);
    }
    port->awaitReply(descriptor);
    return fault->effect == Effect::ReadsNothing ? 0 : failed(*fault);
}

ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    Port* port = portBehind(descriptor);
    return port != nullptr ? writeToPort(*port, descriptor, bytes, size)
                           : orvex_faults::writeToSink(descriptor, bytes, size);
}

int tcgetattr(int descriptor, termios* settings) noexcept {
    Port* port = portBehind(descriptor);
    if (port == nullptr) {
        return real().tcgetattr(descriptor, settings);
    }
    if (const auto fault = injector().next(Call::GetSettings, port->history(descriptor))) {
        port->history(descriptor).settingsUnread = true;
        return failed(*fault);
    }
    return port->getSettings(descriptor, settings);
}

int tcsetattr(int descriptor, int action, const termios* settings) noexcept {
    Port* port = portBehind(descriptor);
    if (port == nullptr) {
        return real().tcsetattr(descriptor, action, settings);
    }
    auto& history = port->history(descriptor);
    const auto fault = injector().next(Call::SetSettings, history);
    history.settingsRefused |= fault.has_value() && history.settingsWritten == 0;
    ++history.settingsWritten;
    return fault ? failed(*fault) : port->setSettings(descriptor, settings);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, request);
    const auto argument = va_arg(arguments, unsigned long);
    va_end(arguments);
    Port* port = portBehind(descriptor);
    if (port == nullptr || request != TCFLSH) {
        return real().ioctl(descriptor, request, argument);
    }
    if (const auto fault = injector().next(Call::Discard, port->history(descriptor))) {
        return failed(*fault);
    }
    return port->discard(descriptor);
}

int nanosleep(const timespec* /*asked*/, timespec* /*remaining*/) {
    return 0;  // Pauses take no time in these tests.
}

int clock_nanosleep(clockid_t /*clock*/, int /*flags*/, const timespec* /*asked*/,
                    timespec* /*remaining*/) {
    return 0;
}

}  // extern "C"
