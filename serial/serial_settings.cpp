// A port's terminal settings: line format, speed and read time-out.
#include <cerrno>

#include "api/driver_exception.h"
#include "log/log.h"
#include "serial/baud_rates.h"
#include "serial/serial_link.h"
#include "serial/system_error.h"

using orvex::logSystemError;

namespace {

constexpr cc_t kDefaultTimeout = 5;  // tenths of a second

void setReadControl(termios& settings, cc_t tenths) {
    settings.c_cc[VTIME] = tenths;
    settings.c_cc[VMIN] = 0;
}

void setSpeed(termios& settings, unsigned baud) {
    const speed_t speed = convertBaudrate(baud);
    ::cfsetispeed(&settings, speed);
    ::cfsetospeed(&settings, speed);
}

void makeRaw(termios& settings) {
    settings.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR |
                                               ICRNL | IXON | IXANY | IXOFF);
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST | ONLCR);
    settings.c_cflag &= ~static_cast<tcflag_t>(PARENB | CSTOPB | CSIZE | CRTSCTS);
    settings.c_cflag |= static_cast<tcflag_t>(CS8 | CREAD | CLOCAL);
    settings.c_lflag &= ~static_cast<tcflag_t>(ISIG | ICANON | ECHO | ECHOE | ECHONL);
}

}  // namespace

unsigned SerialLink::configure(unsigned baud) {
    if (::tcgetattr(fd_, &saved_->settings) != 0) {
        logSystemError("SerialLink::connect:", "tcgetattr", errno);
        return ORVEX_ERR_IO;
    }
    termios settings = saved_->settings;
    makeRaw(settings);
    setReadControl(settings, kDefaultTimeout);
    setSpeed(settings, baud);
    if (::tcsetattr(fd_, TCSANOW, &settings) != 0) {
        logSystemError("SerialLink::connect: set tty attributes.", "tcsetattr", errno);
        return ORVEX_ERR_IO;
    }
    return ORVEX_OK;
}

void SerialLink::setTimeout(unsigned ms) {
    setReadTimeout("setTimeout", static_cast<cc_t>(ms / 100));
}

void SerialLink::resetTimeouts() {
    setReadTimeout("resetTimeouts", kDefaultTimeout);
}

void SerialLink::setBaudrate(unsigned baud) {
    requireHandle("setBaudrate");
    termios settings = readSettings("setBaudrate");
    setSpeed(settings, baud);
    applySettings("setBaudrate", settings);
}

unsigned SerialLink::getBaudrate() {
    requireHandle("getBaudrate");
    const termios settings = readSettings("getBaudrate");
    const speed_t input = ::cfgetispeed(&settings);
    const speed_t output = ::cfgetospeed(&settings);
    if (input != output) {
        clog(LOG_BIT_ERROR, "SerialLink::getBaudrate: input baudrate 00%o != ouput baudrate: 00%o",
             input, output);
    }
    for (const auto& [baud, speed] : orvex::kBaudRates) {
        if (speed == input) {
            return baud;
        }
    }
    clog(LOG_BIT_ERROR, "SerialLink::getBaudrate: define 00%o does not match any baudrate", input);
    return 0;
}

void SerialLink::setReadTimeout(const char* operation, cc_t tenths) const {
    requireHandle(operation);
    termios settings = readSettings(operation);
    setReadControl(settings, tenths);
    applySettings(operation, settings);
}

termios SerialLink::readSettings(const char* operation) const {
    termios settings{};
    if (::tcgetattr(fd_, &settings) != 0) {
        const int error = errno;
        const std::string origin = std::string("SerialLink::") + operation + ":";
        logSystemError(origin.c_str(), "tcgetattr", error);
        orvex::raise(origin + " tcgetattr.", ORVEX_ERR_IO);
    }
    return settings;
}

void SerialLink::applySettings(const char* operation, const termios& settings) const {
    if (::tcsetattr(fd_, TCSANOW, &settings) != 0) {
        const int error = errno;
        const std::string origin = std::string("SerialLink::") + operation + ":";
        logSystemError((origin + " set tty attributes.").c_str(), "tcsetattr", error);
        orvex::raise(origin + " tcsetattr.", ORVEX_ERR_IO);
    }
}
