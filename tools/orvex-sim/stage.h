/// @file
/// Devices at work, their time line, and waiting for signals meanwhile.
#pragma once

#include <vector>

#include "tools/orvex-sim/signals.h"
#include "tools/orvex-sim/timeline.h"

namespace orvex::tools {

/// Keeps devices and time line going while the program waits.
class Stage {
  public:
    /// @param signals outlives the stage, as does @p bell
    Stage(const Signals& signals, const Bell& bell, Posts posts, std::vector<Event> events);

    [[nodiscard]] const Posts& posts() const noexcept { return posts_; }
    /// Starts the time line.
    void begin() { timeline_.begin(posts_); }
    /// Waits for the next signal.
    [[nodiscard]] Signal next();

  private:
    [[nodiscard]] std::optional<sim::Clock::time_point> attend();
    void sleepUntil(std::optional<sim::Clock::time_point> when) const;

    const Signals& signals_;
    const Bell& bell_;
    Posts posts_;
    Timeline timeline_;
};

}  // namespace orvex::tools
