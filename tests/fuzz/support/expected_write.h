/// @file
/// What a written state record comes to.
#pragma once

#include <cstdint>

#include "include/qtr_orvex.h"

namespace orvex_fuzz {

/// A record as it reads after a write.
struct WrittenRecord {
    OrvexStruct record;
    bool hasNewIntensity = false;
    bool hasNewState = false;
    bool hasNewSelection = false;  ///< A group has another channel selected.
};

/// @param before the device's record before the write
/// @param written the caller's record, of no more channels than the device has
[[nodiscard]] WrittenRecord expectedWrite(const OrvexStruct& before, const OrvexStruct& written);

}  // namespace orvex_fuzz
