/// @file
/// One serial port.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "include/qtr_orvex.h"
#include "log/export.h"

/// A terminal device in raw 8N1 mode whose read time-outs the terminal driver keeps.
///
/// Setting up (setPort, connect, disconnect) returns a status code; transfers and settings throw
/// DriverException, with ORVEX_ERR_NO_HANDLE when no port is open. What the system refuses is
/// logged first. No lock: the owner calls one operation at a time.
class ORVEX_API SerialLink {
  public:
    /// A link without a port. @param c kept, without a use
    explicit SerialLink(char c);
    SerialLink(const SerialLink&) = delete;
    SerialLink& operator=(const SerialLink&) = delete;
    /// Restores the port's settings and closes it; failures are only logged.
    ~SerialLink();

    /// Stores the port's path. @return ORVEX_ERR_INVALID_ARG when it is empty
    [[nodiscard]] unsigned setPort(const std::string& port);
    /// Closes the present port without restoring it, then opens and configures another.
    ///
    /// The baud rate is in bits per second, see convertBaudrate.
    /// @return ORVEX_ERR_INVALID_ARG for an empty path; ORVEX_ERR_NO_HANDLE when it cannot be
    ///         opened; ORVEX_ERR_IO when it cannot be configured, and stays open then
    [[nodiscard]] unsigned connect(const std::string& port, unsigned baud);
    /// Restores the port's settings and closes it; takes 10 ms, also when none is open.
    /// @return ORVEX_ERR_IO when closing fails; the link is without a port all the same
    unsigned disconnect();
    /// Whether a port is open.
    [[nodiscard]] bool isConnected() const noexcept;

    /// Reads until @p len bytes are there or the time-out passes without one.
    /// @return the number of bytes read
    /// @throws DriverException ORVEX_ERR_RECV when reading fails
    std::size_t recvArray(void* buf, std::size_t len);
    /// Reads one byte, in three attempts at most, each followed by 200 ms when it was in vain.
    /// @throws DriverException ORVEX_ERR_RECV
    char recvChar();
    /// Reads bytes, each as recvChar does, up to @p last, or until the buffer is full.
    /// @return the number of bytes read
    /// @throws DriverException ORVEX_ERR_RECV
    ORVEX_LOCAL std::size_t recvLine(char* buf, std::size_t size, char last);
    /// purge(), sendArray() and recvLine().
    ORVEX_LOCAL std::size_t exchange(std::string_view request, char* buf, std::size_t size,
                                     char last);
    /// Writes all bytes in one call.
    /// @throws DriverException ORVEX_ERR_SEND
    void sendArray(const void* buf, std::size_t len);
    /// Writes one byte.
    /// @throws DriverException ORVEX_ERR_SEND
    void sendChar(char c);

    /// Discards unread input and unsent output.
    /// @throws DriverException ORVEX_ERR_IO
    void purge();
    /// Sets the read time-out in steps of 100 ms, rounded down: below 100 reads do not wait, and
    /// 25600 and more wrap around.
    /// @throws DriverException ORVEX_ERR_IO
    void setTimeout(unsigned ms);
    /// Sets the read time-out to 0.5 s, as it is after connect.
    /// @throws DriverException ORVEX_ERR_IO
    void resetTimeouts();
    /// Changes the speed. @param baud bits per second, see convertBaudrate
    /// @throws DriverException ORVEX_ERR_IO
    void setBaudrate(unsigned baud);
    /// The input speed in bits per second, 0 when it is unknown.
    /// @throws DriverException ORVEX_ERR_IO
    unsigned getBaudrate();

  private:
    struct Saved {
        termios settings{};
        char character = 0;
    };

    [[nodiscard]] ORVEX_LOCAL unsigned configure(unsigned baud);
    /// Logs why a read brought nothing. @throws DriverException when it failed
    ORVEX_LOCAL static void noteNothingRead(ssize_t count);
    /// The byte, or a later one, after a first read of one byte that ended with @p count.
    ORVEX_LOCAL char lateChar(char c, ssize_t count);
    [[noreturn]] ORVEX_LOCAL static void failSending(ssize_t written, std::size_t len);
    [[noreturn]] ORVEX_LOCAL static void failPurging();
    [[noreturn]] ORVEX_LOCAL static void failWithoutHandle(const char* operation);
    ORVEX_LOCAL void requireHandle(const char* operation) const;
    [[nodiscard]] ORVEX_LOCAL termios readSettings(const char* operation) const;
    ORVEX_LOCAL void applySettings(const char* operation, const termios& settings) const;
    ORVEX_LOCAL void setReadTimeout(const char* operation, cc_t tenths) const;

    int fd_ = 0;  ///< 0: not connected; descriptor 0 is never a port.
    std::string port_;
    std::unique_ptr<Saved> saved_;
};

/// The termios speed constant of the largest known rate that is not above @p baud.
[[nodiscard]] ORVEX_API unsigned convertBaudrate(unsigned baud);
