/// @file
/// The lights that a scan finds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"

namespace orvex::tools {

/// One of them.
struct AttachedLight {
    int number = 0;  ///< From 1, in the order of the ports.
    std::uint64_t handle = 0;
    OrvexType model = ORVEX_TYPE_UNDEFINED;
    std::string port;
    std::string serial;  ///< As the USB tells it; may be empty.
};

/// Scans.
[[nodiscard]] std::vector<AttachedLight> attachedLights();

/// "USB devices 04d8:ea02 (Cedar) and 04d8:ea08 (Tamar) with a port ttyACM…"
[[nodiscard]] std::string lookedFor();

}  // namespace orvex::tools
