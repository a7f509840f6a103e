/// @file
/// What happens to devices, and when.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "sim/fault.h"
#include "tools/orvex-sim/post.h"

namespace orvex::tools {

using Posts = std::vector<std::unique_ptr<Post>>;

/// One entry of a time line.
struct Event {
    enum class Kind { plug, unplug, fault, clearFaults };

    std::chrono::milliseconds at{0};   ///< After the begin.
    std::vector<std::size_t> devices;  ///< Indices of those it befalls.
    Kind kind = Kind::unplug;
    std::optional<sim::Trigger> trigger;  ///< Faults have one.
    sim::Fault fault;
};

/// Makes events happen at their time.
class Timeline {
  public:
    explicit Timeline(std::vector<Event> events);

    /// Sets the clock to 0 and lets happen what is due then.
    void begin(const Posts& posts);
    /// Lets happen what is due. @return when the next event is
    std::optional<sim::Clock::time_point> proceed(const Posts& posts);

  private:
    std::vector<Event> events_;  // in the order of their times
    std::size_t next_ = 0;
    sim::Clock::time_point begun_;
};

}  // namespace orvex::tools
