/// @file
/// Handles in log lines.
#pragma once

#include <cstdint>

namespace orvex {

/// A handle's low 32 bits, as the lines of a scan show them with "%X".
[[nodiscard]] inline unsigned lowHandleBits(const void* handle) noexcept {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(handle));
}

}  // namespace orvex
