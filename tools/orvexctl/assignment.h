/// @file
/// Reading "3=on,45%" and "1,3-5".
#pragma once

#include <string>
#include <vector>

#include "tools/orvexctl/channel_change.h"

namespace orvex::tools {

/// "3=on", "1=45%", "4=off,20%".
/// @throws Failure that names the culprit and its position in the text
[[nodiscard]] ChannelChange parseAssignment(const std::string& text);

/// "1", "1,3", "2-4", "all".
/// @return the positions as they stand; none for "all" and for no texts at all
/// @throws Failure that names the culprit and its position in the text
[[nodiscard]] std::vector<int> parsePositions(const std::vector<std::string>& texts);

}  // namespace orvex::tools
