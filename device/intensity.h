/// @file
/// What a channel makes of a requested intensity.
#pragma once

#include <algorithm>
#include <cstdint>

#include "include/qtr_orvex.h"

namespace orvex {

/// The intensity rounded toward zero to the channel's step and held within its limits.
[[nodiscard]] inline std::int32_t limitedIntensity(std::int32_t requested,
                                                   const OrvexChannel& channel) noexcept {
    std::int32_t value = requested;
    if (channel.iIntensityStep != 0) {
        value = value / channel.iIntensityStep * channel.iIntensityStep;
    }
    // The lower limit wins where the two contradict each other.
    return std::max(std::min(value, channel.iMaxIntensity), channel.iMinIntensity);
}

}  // namespace orvex
