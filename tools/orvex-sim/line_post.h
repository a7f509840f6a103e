/// @file
/// A device on an existing terminal line.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "sim/line_server.h"
#include "tools/orvex-sim/post.h"
#include "tools/orvex-sim/terminal_line.h"

namespace orvex::tools {

/// Keeps the line open, and opens it again after it has ended. Unplugged, the device is deaf.
class LinePost final : public Post {
  public:
    /// @throws Failure when the line cannot be opened now
    LinePost(const PostSetup& setup, std::string path);
    ~LinePost() override;

    [[nodiscard]] OrvexType model() const noexcept override { return setup_.plan.setup.model; }
    [[nodiscard]] const std::string& path() const noexcept override { return path_; }
    void plug() override;
    void unplug() override;
    [[nodiscard]] sim::FaultScript& faults() noexcept override { return conversation_.faults(); }
    std::optional<sim::Clock::time_point> attend() override;

  private:
    void open();
    void close();
    void note(bool pluggedIn);

    const PostSetup setup_;
    const std::string path_;
    sim::Conversation conversation_;
    std::unique_ptr<TerminalLine> line_;
    std::unique_ptr<sim::LineServer> server_;
    std::atomic<bool> ended_{false};
    bool isPlugged_ = false;
};

}  // namespace orvex::tools
