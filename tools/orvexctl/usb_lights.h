/// @file
/// The lights that are plugged into the USB, whether they have a port or not.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"

namespace orvex::tools {

/// A USB device of the lights' vendor.
struct UsbLight {
    std::string identity;            ///< "04d8:ea08"
    std::string product;             ///< What it calls itself; may be empty.
    std::optional<OrvexType> model;  ///< Nothing: a scan does not find it.
    std::string tty;                 ///< "ttyACM0"; empty: it has no port.
};

/// @param sys where sysfs is
[[nodiscard]] std::vector<UsbLight> usbLights(const std::filesystem::path& sys);

}  // namespace orvex::tools
