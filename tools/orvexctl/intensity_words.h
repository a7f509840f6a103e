/// @file
/// What becomes of a wanted intensity, in words.
#pragma once

#include <string>

#include "include/qtr_orvex.h"

namespace orvex::tools {

/// "45.0 %" of 450.
[[nodiscard]] std::string percentText(int tenths);

/// Per cent in tenths, rounded down.
[[nodiscard]] int tenthsOf(double percent);

/// "raised from 2 % to the minimum, 5.0 %" and the like; empty when an intensity is what was
/// wanted.
[[nodiscard]] std::string adjustment(double wantedPercent, const OrvexChannel& channel);

}  // namespace orvex::tools
