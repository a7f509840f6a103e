/// @file
/// What is allocated, exactly.
#pragma once

#include <cstddef>

namespace orvex_soak {

/// Bytes that the program and the library have allocated and not freed.
[[nodiscard]] std::size_t allocatedBytes() noexcept;

}  // namespace orvex_soak
