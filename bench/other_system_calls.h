/// @file
/// Counting all system calls.
#pragma once

#include <cstddef>
#include <functional>

namespace orvex_bench {

/// How many system calls a function makes, whichever they are: it runs in a child process that this
/// one traces.
/// @throws std::system_error when the child cannot be traced
[[nodiscard]] std::size_t otherSystemCalls(const std::function<void()>& function);

}  // namespace orvex_bench
