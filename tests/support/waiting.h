/// @file
/// Times in tests: lower bounds, and waits that end with an event.
#pragma once

#include <poll.h>

#include <chrono>

namespace orvex_test {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

/// How long @p action takes.
template <typename Action>
[[nodiscard]] std::chrono::milliseconds timeTaken(Action action) {
    const auto begin = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

/// Waits until @p condition holds. @return false when it does not within half a minute
template <typename Condition>
[[nodiscard]] bool waitUntil(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + 30s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        ::poll(nullptr, 0, 1);
    }
    return true;
}

}  // namespace orvex_test
