/// @file
/// A device that says again what a trace recorded.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "sim/line_server.h"
#include "sim/pseudo_terminal.h"
#include "sim/talker.h"
#include "tools/orvex-sim/trace_file.h"

namespace orvex::tools {

/// Where a client departed from a trace, in words.
using DepartureReport = std::function<void(const std::string& text)>;

/// Answers as recorded as long as it is asked as recorded; from the client's first departure on it
/// answers everything with the error reply.
class Replay final : public sim::Talker {
  public:
    /// @param path the trace's, for messages  @param report called in the thread that receives
    Replay(std::string path, TraceDevice device, DepartureReport report);

    [[nodiscard]] std::vector<sim::Transmission> receive(std::string_view bytes) override;
    /// Requires that all was asked; reports it otherwise. Not while bytes are received.
    void finish();
    [[nodiscard]] bool hasDeparted() const noexcept { return departed_; }
    [[nodiscard]] const TraceDevice& device() const noexcept { return device_; }

  private:
    /// Whether what was received is the next request, its beginning, or something else.
    enum class Fit { whole, part, none };

    [[nodiscard]] bool isAtEnd() const noexcept { return next_ == device_.entries.size(); }
    [[nodiscard]] Fit fit() const;
    void answer(std::vector<sim::Transmission>& out);
    void depart(const std::string& got);
    void refuse(std::vector<sim::Transmission>& out);

    const std::string path_;
    const TraceDevice device_;
    const DepartureReport report_;
    std::string received_;
    std::size_t next_ = 0;
    std::atomic<bool> departed_{false};
};

/// A replay on a pseudo-terminal.
class ReplayedDevice {
  public:
    ReplayedDevice(const std::string& tracePath, const TraceDevice& device,
                   const DepartureReport& report);
    /// The terminal's path, for a place.
    [[nodiscard]] const std::string& terminal() const noexcept { return link_; }
    [[nodiscard]] const TraceDevice& device() const noexcept { return replay_.device(); }

    /// Ends the port. @return whether the client has kept to the trace
    [[nodiscard]] bool finish();

  private:
    Replay replay_;
    const sim::TemporaryDirectory directory_;
    const std::string link_;
    sim::PseudoTerminal port_;
    std::unique_ptr<sim::LineServer> server_;
};

}  // namespace orvex::tools
