/// @file
/// How the model tells that a call fails, or that the library is wrong.
#pragma once

#include <cstdint>
#include <string>

#include "include/qtr_orvex.h"
#include "tests/soak/transcript.h"

namespace orvex_soak {

/// The call ends with this status code.
struct Refusal {
    std::uint32_t code;
};

inline void refuseUnless(bool condition, std::uint32_t code) {
    if (!condition) {
        throw Refusal{code};
    }
}

inline void requireThat(bool condition, const std::string& rule) {
    if (!condition) {
        throw Mismatch(rule);
    }
}

/// What a call must return that does what @p action does.
template <typename Action>
[[nodiscard]] std::uint32_t statusOf(Action action) {
    try {
        action();
    } catch (const Refusal& refusal) {
        return refusal.code;
    }
    return ORVEX_OK;
}

}  // namespace orvex_soak
