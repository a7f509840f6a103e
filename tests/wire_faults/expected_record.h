/// @file
/// The record of a device that has just been opened.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "sim/device_state.h"

namespace orvex_test {

/// In what a record differs from what the device is and does.
[[nodiscard]] std::vector<std::string> differences(const OrvexStruct& record,
                                                   const orvex::sim::DeviceSetup& setup,
                                                   const orvex::sim::DeviceState& state,
                                                   std::uint64_t handle);

}  // namespace orvex_test
