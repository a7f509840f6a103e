// The system calls that the library makes on its ports. Those on ports of the wire go there, pauses
// take no time, all others are the system's.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdarg>
#include <ctime>
#include <string>
#include <string_view>

#include "tests/soak/wire.h"

namespace {

using orvex_soak::currentWire;

constexpr std::string_view kPorts = "/dev/ttyACM";

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

orvex_soak::Port* portAt(int descriptor) {
    return currentWire() != nullptr ? currentWire()->at(descriptor) : nullptr;
}

int openReally(const char* path, int flags, mode_t mode) {
    static const auto call = real<int(const char*, int, ...)>("open");
    return call(path, flags, mode);
}

}  // namespace

namespace orvex_soak {

int openNothing() {
    return openReally("/dev/null", O_RDWR | O_CLOEXEC, 0);
}

}  // namespace orvex_soak

extern "C" {

int open(const char* path, int flags, ...) {
    if (currentWire() != nullptr && std::string_view(path).substr(0, kPorts.size()) == kPorts) {
        return currentWire()->open(path);
    }
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return openReally(path, flags, mode);
}

int close(int descriptor) {
    if (currentWire() != nullptr) {
        currentWire()->closed(descriptor);
    }
    static const auto call = real<int(int)>("close");
    return call(descriptor);
}

ssize_t read(int descriptor, void* buffer, std::size_t size) {
    if (orvex_soak::Port* port = portAt(descriptor)) {
        return port->read(buffer, size);
    }
    static const auto call = real<ssize_t(int, void*, std::size_t)>("read");
    return call(descriptor, buffer, size);
}

ssize_t write(int descriptor, const void* buffer, std::size_t size) {
    if (orvex_soak::Port* port = portAt(descriptor)) {
        return port->write({static_cast<const char*>(buffer), size});
    }
    static const auto call = real<ssize_t(int, const void*, std::size_t)>("write");
    return call(descriptor, buffer, size);
}

int tcgetattr(int descriptor, termios* settings) noexcept {
    if (orvex_soak::Port* port = portAt(descriptor)) {
        return port->getSettings(*settings);
    }
    static const auto call = real<int(int, termios*)>("tcgetattr");
    return call(descriptor, settings);
}

int tcsetattr(int descriptor, int action, const termios* settings) noexcept {
    if (orvex_soak::Port* port = portAt(descriptor)) {
        return port->setSettings(*settings);
    }
    static const auto call = real<int(int, int, const termios*)>("tcsetattr");
    return call(descriptor, action, settings);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    if (orvex_soak::Port* port = portAt(descriptor); port != nullptr && request == TCFLSH) {
        return port->flush();
    }
    std::va_list arguments;
    va_start(arguments, request);
    const auto argument = va_arg(arguments, unsigned long);
    va_end(arguments);
    static const auto call = real<int(int, unsigned long, ...)>("ioctl");
    return call(descriptor, request, argument);
}

int nanosleep(const timespec* asked, timespec* remaining) {
    if (currentWire() != nullptr) {
        return 0;
    }
    static const auto call = real<int(const timespec*, timespec*)>("nanosleep");
    return call(asked, remaining);
}

}  // extern "C"
