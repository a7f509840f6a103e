/// @file
/// The light sources that the tests use.
#pragma once

#include <string>
#include <vector>

#include "sim/device_setup.h"

namespace orvex_faults {

struct Light {
    const char* name;
    /// Its USB product identifier; a model without one is registered by the test as what the listed
    /// port, of a Tamar, belongs to.
    std::string product;
    orvex::sim::DeviceSetup setup;
    std::string refused = {};  ///< The command that it answers with its error reply.
};

/// A lamp, an extended lamp, and LED models with four LEDs, eight positions with a group, and
/// sixteen with a group.
[[nodiscard]] Light alder();
[[nodiscard]] Light cedar();
[[nodiscard]] Light fourLedTamar();
/// Four LEDs; answers its disconnect request with an error.
[[nodiscard]] Light unwillingTamar();
[[nodiscard]] Light groupedTamar();
[[nodiscard]] Light willow();

}  // namespace orvex_faults
