/// @file
/// What went over a device's line, as the device saw it.
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sim/conversation.h"

namespace orvex_test {

using Clock = std::chrono::steady_clock;

/// One request and what the device sent until the next.
struct Exchange {
    std::string request;  ///< Without its carriage return.
    std::string reply;
    Clock::time_point asked;
    Clock::time_point lastSent;  ///< The last byte of the reply; none: when it was asked.
};

/// Records a simulated device's exchanges. For any thread.
class WireMonitor {
  public:
    /// To be a device's observer; the monitor outlives the device.
    [[nodiscard]] orvex::sim::Observer observer();

    [[nodiscard]] std::size_t count() const;
    /// The exchanges from number @p first (from 0) on.
    [[nodiscard]] std::vector<Exchange> since(std::size_t first) const;

  private:
    void see(orvex::sim::Direction direction, std::string_view bytes);

    mutable std::mutex mutex_;
    std::string partial_;
    std::vector<Exchange> exchanges_;
};

}  // namespace orvex_test
