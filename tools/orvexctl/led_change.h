/// @file
/// Changes of LEDs.
#pragma once

#include <vector>

#include "tools/orvexctl/channel_change.h"

namespace orvex::tools {

/// Makes all changes in one record.
void changeLeds(Light& light, const std::vector<ChannelChange>& changes, Report& report);

}  // namespace orvex::tools
