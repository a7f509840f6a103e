/// @file
/// A device that is to be simulated.
#pragma once

#include <functional>
#include <string>

#include "sim/device_setup.h"
#include "sim/device_state.h"

namespace orvex::tools {

/// What an option or a scenario says of a device.
struct DevicePlan {
    sim::DeviceSetup setup;
    std::string name;       ///< How a time line calls it; may be empty.
    bool pluggedIn = true;  ///< From the start.
    /// What the setup cannot say, done before anybody talks to the device; may be empty.
    std::function<void(sim::DeviceState&)> adjust;
};

}  // namespace orvex::tools
