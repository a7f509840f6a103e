/// @file
/// The names of the capability bits.
#pragma once

#include <array>
#include <cstdint>

#include "include/qtr_orvex.h"

namespace orvex::tools {

/// One bit of OrvexStruct::iCapabilities.
struct Capability {
    std::uint32_t bit;
    const char* name;   ///< In JSON.
    const char* words;  ///< For people.
};

extern const std::array<Capability, 4> kCapabilities;

}  // namespace orvex::tools
