/// @file
/// The option --device MODEL[,MEMBER=VALUE]…
#pragma once

#include <string>

#include "tools/orvex-sim/device_plan.h"

namespace orvex::tools {

/// Reads the option's value.
/// @throws Failure that names the part that makes no sense and its place in the text
[[nodiscard]] DevicePlan readDeviceOption(const std::string& text);

/// What the option's members mean, for help texts.
[[nodiscard]] std::string deviceOptionHelp();

}  // namespace orvex::tools
