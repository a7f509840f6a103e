/// @file
/// What holds whatever a device or a caller does.
#pragma once

#include <cstdint>

#include "include/qtr_orvex.h"

namespace orvex_fuzz {

/// Ends the process with the property's text, which libFuzzer reports as a crash.
[[noreturn]] void violated(const char* property);

inline void holds(bool condition, const char* property) {
    if (!condition) {
        violated(property);
    }
}

/// A status code is one of the closed set.
void requireKnownStatus(std::uint32_t status);

/// A record is within its bounds: channels, texts, groups, capabilities.
void requireSoundRecord(const OrvexStruct& record);

/// Two records are the same byte for byte; tells the first difference.
void requireSameRecord(const OrvexStruct& actual, const OrvexStruct& expected);

/// The device's record as the exported call gives it, sound in itself.
OrvexStruct soundRecordOf(std::uint64_t handle);

}  // namespace orvex_fuzz
