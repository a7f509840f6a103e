// A port's opening, closing and transfers.
#include "serial/serial_link.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "api/driver_exception.h"
#include "log/log.h"
#include "serial/system_error.h"

using orvex::logSystemError;
using namespace std::chrono_literals;

namespace {

constexpr int kReadAttempts = 3;
constexpr auto kReadPause = 200ms;
constexpr auto kClosingPause = 10ms;

/// Opens a port on a descriptor above those of the standard streams, which a daemon may have
/// closed: 0 stands for "not connected", and on 1 or 2 the device would be sent what the program
/// prints.
int openPort(const char* path) {
    const int fd = ::open(path, O_RDWR);
    if (fd < 0 || fd > STDERR_FILENO) {
        return fd;
    }
    const int higher = ::fcntl(fd, F_DUPFD, STDERR_FILENO + 1);
    const int error = errno;
    ::close(fd);
    errno = error;
    return higher;
}

}  // namespace

SerialLink::SerialLink(char c) : saved_(std::make_unique<Saved>()) {
    saved_->character = c;
}

SerialLink::~SerialLink() {
    if (fd_ == 0) {
        return;
    }
    if (::tcsetattr(fd_, TCSANOW, &saved_->settings) != 0) {
        logSystemError("SerialLink::~SerialLink: set tty attributes.", "tcsetattr", errno);
    }
    if (::close(fd_) != 0) {
        // Programs know this text: it names tcsetattr for a failed close, here and in disconnect.
        logSystemError("SerialLink::~SerialLink: close handle.", "tcsetattr", errno);
    }
}

unsigned SerialLink::setPort(const std::string& port) {
    if (port.empty()) {
        return ORVEX_ERR_INVALID_ARG;
    }
    port_ = port;
    return ORVEX_OK;
}

unsigned SerialLink::connect(const std::string& port, unsigned baud) {
    if (fd_ != 0) {
        ::close(fd_);
        fd_ = 0;
    }
    if (const unsigned refused = setPort(port); refused != ORVEX_OK) {
        return refused;
    }
    clog(LOG_BIT_SERIAL, "SerialLink::connect: port: %s", port_.c_str());
    const int fd = openPort(port_.c_str());
    if (fd < 0) {
        const int error = errno;
        clog(LOG_BIT_ERROR, "SerialLink::connect: open port: %s", port_.c_str());
        logSystemError("SerialLink::connect:", "open", error);
        return ORVEX_ERR_NO_HANDLE;
    }
    fd_ = fd;
    return configure(baud);
}

unsigned SerialLink::disconnect() {
    if (fd_ != 0) {
        if (::tcsetattr(fd_, TCSANOW, &saved_->settings) != 0) {
            logSystemError("SerialLink::disconnect: set tty attributes.", "tcsetattr", errno);
        }
        const int closed = ::close(fd_);
        fd_ = 0;
        if (closed != 0) {
            logSystemError("SerialLink::disconnect: close handle.", "tcsetattr", errno);
            return ORVEX_ERR_IO;
        }
    }
    std::this_thread::sleep_for(kClosingPause);
    return ORVEX_OK;
}

bool SerialLink::isConnected() const noexcept {
    return fd_ != 0;
}

std::size_t SerialLink::recvArray(void* buf, std::size_t len) {
    requireHandle("recvArray");
    std::size_t got = 0;
    while (got < len) {
        const ssize_t count = ::read(fd_, static_cast<char*>(buf) + got, len - got);
        if (count <= 0) {
            noteNothingRead(count);
            break;
        }
        got += static_cast<std::size_t>(count);
    }
    return got;
}

void SerialLink::noteNothingRead(ssize_t count) {
    if (count == 0) {
        // A time-out, or the end of a port that is gone: the caller tells by the count.
        log(LOG_BIT_ERROR, "SerialLink::recvArray: read returned with EOF (0)");
        return;
    }
    logSystemError("SerialLink::recvArray:", "read", errno);
    orvex::raise("SerialLink::recvArray: read.", ORVEX_ERR_RECV);
}

// What follows is written so that an exchange in which nothing fails needs few nested calls: after
// a return from the kernel the processor mispredicts the returns from all of them.

char SerialLink::recvChar() {
    char c = 0;
    recvLine(&c, 1, c);
    return c;
}

std::size_t SerialLink::recvLine(char* buf, std::size_t size, char last) {
    requireHandle("recvArray");
    std::size_t length = 0;
    do {
        const ssize_t count = ::read(fd_, buf + length, 1);
        if (count != 1) {
            buf[length] = lateChar(buf[length], count);
        }
    } while (buf[length++] != last && length < size);
    return length;
}

char SerialLink::lateChar(char c, ssize_t count) {
    for (int attempt = 1; count <= 0; ++attempt) {
        noteNothingRead(count);
        std::this_thread::sleep_for(kReadPause);
        if (attempt == kReadAttempts) {
            // The byte, still 0: programs know the text with this digit at its end.
            orvex::raise("SerialLink::recvChar: Wrong recv length: 0", ORVEX_ERR_RECV);
        }
        count = ::read(fd_, &c, 1);
    }
    if (count > 1) {
        log(LOG_BIT_WARNING,
            "SerialLink::recvChar: returned with len > 1: " + std::to_string(count));
    }
    return c;
}

void SerialLink::sendArray(const void* buf, std::size_t len) {
    requireHandle("sendArray");
    const ssize_t written = ::write(fd_, buf, len);
    if (written < 0 || static_cast<std::size_t>(written) != len) {
        failSending(written, len);
    }
}

void SerialLink::failSending(ssize_t written, std::size_t len) {
    if (written < 0) {
        logSystemError("SerialLink::sendArray:", "write", errno);
        orvex::raise("SerialLink::sendArray: write.", ORVEX_ERR_SEND);
    }
    clog(LOG_BIT_ERROR, "SerialLink::sendArray: written bytes: %d != requested len: %d",
         static_cast<int>(written), static_cast<int>(len));
    orvex::raise("SerialLink::sendArray: Wrong sent length: " + std::to_string(written),
                 ORVEX_ERR_SEND);
}

void SerialLink::sendChar(char c) {
    sendArray(&c, 1);
}

void SerialLink::purge() {
    requireHandle("purge");
    if (::ioctl(fd_, TCFLSH, TCIOFLUSH) != 0) {
        failPurging();
    }
}

void SerialLink::failPurging() {
    logSystemError("SerialLink::purge:", "ioctl", errno);
    orvex::raise("SerialLink::purge: read.", ORVEX_ERR_IO);
}

std::size_t SerialLink::exchange(std::string_view request, char* buf, std::size_t size, char last) {
    purge();
    sendArray(request.data(), request.size());
    return recvLine(buf, size, last);
}

void SerialLink::requireHandle(const char* operation) const {
    if (fd_ == 0) {
        failWithoutHandle(operation);
    }
}

void SerialLink::failWithoutHandle(const char* operation) {
    orvex::raise(std::string("SerialLink::") + operation + ": no handle.", ORVEX_ERR_NO_HANDLE);
}
