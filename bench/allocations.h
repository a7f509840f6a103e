/// @file
/// Counting what operator new hands out, in the program and in the libraries it loads.
#pragma once

#include <cstddef>

namespace orvex_bench {

struct Allocations {
    std::size_t count = 0;
    std::size_t bytes = 0;
};

/// Of the calling thread, since its start.
[[nodiscard]] const Allocations& allocations() noexcept;

/// What @p call allocates.
template <typename Call>
[[nodiscard]] Allocations allocationsOf(const Call& call) {
    const Allocations before = allocations();
    call();
    return {allocations().count - before.count, allocations().bytes - before.bytes};
}

}  // namespace orvex_bench
