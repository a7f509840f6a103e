/// @file
/// A device at work and the way its clients reach it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "sim/fault.h"
#include "sim/simulated_device.h"
#include "tools/orvex-sim/device_plan.h"
#include "tools/orvex-sim/place.h"
#include "tools/orvex-sim/signals.h"
#include "tools/orvex-sim/trace_writer.h"

namespace orvex::tools {

/// A device that a time line can plug, unplug and trouble. For the main thread.
class Post {
  public:
    virtual ~Post() = default;

    [[nodiscard]] virtual OrvexType model() const noexcept = 0;
    /// What clients open.
    [[nodiscard]] virtual const std::string& path() const noexcept = 0;
    virtual void plug() = 0;
    virtual void unplug() = 0;
    [[nodiscard]] virtual sim::FaultScript& faults() noexcept = 0;
    /// Does what the device's thread has asked for by ringing the bell.
    /// @return when it wants to be called even without the bell
    virtual std::optional<sim::Clock::time_point> attend() = 0;
};

/// What every device at work needs.
struct PostSetup {
    DevicePlan plan;
    unsigned number = 1;           ///< In the trace.
    TraceWriter* trace = nullptr;  ///< Null: none. Outlives the post.
    const Bell* bell = nullptr;    ///< Outlives the post.
};

/// A device on a pseudo-terminal.
class SimulatedPost final : public Post {
  public:
    explicit SimulatedPost(const PostSetup& setup);

    /// Shows the device to its clients; nothing else may be called before.
    void show(std::unique_ptr<Place> place);
    /// The terminal's path, for a place.
    [[nodiscard]] const std::string& terminal() const noexcept { return device_.path(); }

    [[nodiscard]] OrvexType model() const noexcept override { return device_.model(); }
    [[nodiscard]] const std::string& path() const noexcept override { return place_->path(); }
    void plug() override;
    void unplug() override;
    [[nodiscard]] sim::FaultScript& faults() noexcept override {
        return device_.conversation().faults();
    }
    std::optional<sim::Clock::time_point> attend() override;

  private:
    void notePlugging(bool pluggedIn);

    const PostSetup setup_;
    std::unique_ptr<Place> place_;
    bool isPlugged_ = false;
    sim::SimulatedDevice device_;
};

}  // namespace orvex::tools
