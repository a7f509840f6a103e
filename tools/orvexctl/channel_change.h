/// @file
/// Changes of channels: intensities and states, together.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/orvexctl/light.h"
#include "tools/orvexctl/report.h"

namespace orvex::tools {

/// What is wanted of one channel.
struct ChannelChange {
    int position = 0;                 ///< From 1. Lamps have one channel.
    std::optional<double> percent{};  ///< 0 to 100.
    std::optional<bool> on{};         ///< Lamps: whether the shutter is open.
};

/// Every position with an LED; 1 for a lamp.
[[nodiscard]] std::vector<int> usablePositions(Light& light);

/// @param culprit what named the position, for the message
/// @throws Failure unless the light has an LED at the position
void requireUsablePosition(Light& light, int position, const std::string& culprit);

/// Makes all changes together and says what has become of them.
void applyChanges(Light& light, const std::vector<ChannelChange>& changes, Report& report);

}  // namespace orvex::tools
