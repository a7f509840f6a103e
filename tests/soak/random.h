/// @file
/// Choices that a seed decides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace orvex_soak {

/// Choices that are the same for the same seed everywhere: the standard library's distributions
/// may differ from one implementation to the next.
class Random {
  public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}

    /// A number from 0 to @p bound - 1.
    [[nodiscard]] std::size_t below(std::size_t bound) {
        return static_cast<std::size_t>(engine_() % bound);
    }
    /// A number from @p low to @p high.
    [[nodiscard]] int between(int low, int high) {
        return low + static_cast<int>(below(static_cast<std::size_t>(high - low + 1)));
    }
    [[nodiscard]] bool percent(std::size_t chance) { return below(100) < chance; }

    template <typename T>
    [[nodiscard]] const T& oneOf(const std::vector<T>& choices) {
        return choices[below(choices.size())];
    }

  private:
    std::mt19937_64 engine_;
};

}  // namespace orvex_soak
