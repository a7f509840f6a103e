/// @file
/// What udev tells.
#pragma once

#include <libudev.h>

#include <memory>
#include <string>

namespace orvex::tools {

/// The vendor of all lights on the USB.
constexpr unsigned kUsbVendor = 0x04D8;

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const noexcept {
        release(object);
    }
};

using Udev = std::unique_ptr<udev, Release<udev_unref>>;
using UdevDevice = std::unique_ptr<udev_device, Release<udev_device_unref>>;
using UdevMonitor = std::unique_ptr<udev_monitor, Release<udev_monitor_unref>>;

/// The serial number of the USB device of a port; empty when it has none.
[[nodiscard]] std::string usbSerial(const std::string& port);

/// Whether ModemManager is told to leave a port alone.
[[nodiscard]] bool isIgnoredByModemManager(const std::string& port);

}  // namespace orvex::tools
