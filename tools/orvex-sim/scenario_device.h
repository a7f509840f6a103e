/// @file
/// A scenario's devices.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "tools/common/json_member.h"
#include "tools/orvex-sim/device_plan.h"

namespace orvex::tools {

/// Reads an object as "orvexctl info --json" prints it, with what concerns the simulator in its
/// member "simulator". What is left out is as the model has it of its own accord.
/// @throws std::invalid_argument that names the member
[[nodiscard]] DevicePlan readScenarioDevice(const nlohmann::json& object, const JsonMember& member);

}  // namespace orvex::tools
