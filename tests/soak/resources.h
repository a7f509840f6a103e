/// @file
/// What the process uses.
#pragma once

#include <cstddef>
#include <string>

namespace orvex_soak {

/// What the process uses now.
struct Resources {
    std::size_t allocated = 0;  ///< Bytes that were asked for and not given back.
    std::size_t resident = 0;   ///< Bytes of memory.
    std::size_t descriptors = 0;
    std::size_t threads = 0;

    [[nodiscard]] static Resources now();
};

[[nodiscard]] std::string textOf(const Resources& resources);

/// What has grown beyond its limit since @p before, "" when nothing has.
[[nodiscard]] std::string growth(const Resources& before, const Resources& now);

}  // namespace orvex_soak
