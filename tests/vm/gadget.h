/// @file
/// A USB device with a serial port, made by the kernel's own gadget driver.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "tests/support/waiting.h"

namespace orvex_test {

/// What a USB device says of itself.
struct UsbIdentity {
    std::string vendor = "0x04d8";
    std::string product = "0xea08";
    std::string text = "Orvex Tamar";
    std::string serial = "";
};

/// A USB device on a bus of its own that is plugged in and unplugged at will.
class Gadget {
  public:
    /// @param bus which of the machine's USB controllers, from 0
    Gadget(unsigned bus, const UsbIdentity& identity);
    Gadget(const Gadget&) = delete;
    Gadget& operator=(const Gadget&) = delete;
    ~Gadget();

    /// Plugs it in and waits until udev has done its work.
    void plug();
    /// Unplugs it and waits until udev has done its work.
    void unplug();
    /// Unplugs it, if it is plugged in, without waiting.
    void pull();
    /// Waits until kernel and udev have forgotten the port. @return false when they do not
    [[nodiscard]] bool awaitGone() const;

    /// The port for the device's own program, "/dev/ttyGS0".
    [[nodiscard]] const std::string& deviceSide() const noexcept { return deviceSide_; }
    /// The port for the library, "/dev/ttyACM0", as it was when it was plugged in last.
    [[nodiscard]] const std::string& port() const noexcept { return port_; }

  private:
    [[nodiscard]] std::string findPort() const;
    void connect(const std::string& controller) const;

    const unsigned bus_;
    const std::filesystem::path root_;
    const std::filesystem::path function_;
    std::string deviceSide_;
    std::string port_;
    std::string database_;  ///< Where udev keeps what it knows of the port.
};

/// Waits for something that udev or the kernel does. @return false when it does not come
template <typename Condition>
[[nodiscard]] bool waitForSystem(Condition condition) {
    return waitUntil([&] {
        // The machine has one processor, and the others need it more.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return condition();
    });
}

/// Whether udev has a port with all its properties and permissions.
[[nodiscard]] bool udevKnows(const std::string& port);

/// Whether the port's name is there.
[[nodiscard]] bool isThere(const std::string& path);

}  // namespace orvex_test
