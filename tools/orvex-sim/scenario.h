/// @file
/// Scenario files.
#pragma once

#include <string>
#include <vector>

#include "tools/orvex-sim/device_plan.h"
#include "tools/orvex-sim/timeline.h"

namespace orvex::tools {

/// Devices and what happens to them.
struct Scenario {
    std::vector<DevicePlan> devices;
    std::vector<Event> timeline;
};

/// @throws Failure that names the file and the member, or line and column
[[nodiscard]] Scenario readScenario(const std::string& path);

/// The devices of options, followed by those of a scenario, whose time line knows only its own.
/// @param path empty: no scenario
/// @throws Failure also when there is no device at all
[[nodiscard]] Scenario scenarioOf(const std::vector<std::string>& deviceOptions,
                                  const std::string& path);

}  // namespace orvex::tools
