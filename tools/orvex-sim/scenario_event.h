/// @file
/// A scenario's time line.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "tools/common/json_member.h"
#include "tools/orvex-sim/device_plan.h"
#include "tools/orvex-sim/timeline.h"

namespace orvex::tools {

/// Reads one entry of a time line.
/// @param entry the same object  @param devices those of the scenario
/// @throws std::invalid_argument that names the member
[[nodiscard]] Event readScenarioEvent(const nlohmann::json& object, const JsonMember& entry,
                                      const std::vector<DevicePlan>& devices);

}  // namespace orvex::tools
