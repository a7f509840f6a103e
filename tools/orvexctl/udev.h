/// @file
/// What udev tells.
#pragma once

#include <string>

#include "device/models.h"
#include "discovery/udev_objects.h"

namespace orvex::tools {

/// The serial number of the USB device of a port; empty when it has none.
[[nodiscard]] std::string usbSerial(const std::string& port);

/// Whether ModemManager is told to leave a port alone.
[[nodiscard]] bool isIgnoredByModemManager(const std::string& port);

}  // namespace orvex::tools
