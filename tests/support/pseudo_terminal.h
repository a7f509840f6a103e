/// @file
/// A serial port with a test at its far end.
#pragma once

#include <termios.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace orvex_test {

/// A pseudo-terminal: the library opens path(), the test plays the device on the master side. The
/// far end may be used in another thread than the port.
class PseudoTerminal {
  public:
    PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    ~PseudoTerminal();

    [[nodiscard]] int master() const noexcept { return master_; }
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    /// The port's terminal settings.
    [[nodiscard]] termios settings() const;
    void apply(const termios& settings) const;

    /// Takes @p count bytes that were sent to the device; fewer when no more come in time.
    [[nodiscard]] std::string takeSent(std::size_t count) const;
    /// Whether nothing that was sent waits to be taken.
    [[nodiscard]] bool nothingSent() const;
    /// Sends bytes from the device.
    void send(std::string_view bytes) const;
    /// Sends bytes from the device and waits until they can be read from the port, where nobody
    /// may be reading yet.
    void answer(std::string_view bytes) const;
    /// The number of bytes that can be read from the port.
    [[nodiscard]] std::size_t unread() const;
    /// The device goes away.
    void hangUp();

    /// How many descriptors this process has open on the port, not counting this object's own.
    [[nodiscard]] std::size_t openDescriptors() const;

  private:
    int master_;
    int own_;  ///< Keeps the port alive between two connections.
    std::string path_;
};

/// Equality of everything a port can be set to.
[[nodiscard]] bool sameSettings(const termios& a, const termios& b);

}  // namespace orvex_test
