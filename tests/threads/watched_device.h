/// @file
/// A simulated device that sees whether the requests of several threads come one by one.
#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sim/conversation.h"
#include "sim/line_server.h"
#include "sim/pseudo_terminal.h"

namespace orvex_threads {

/// A Tamar on a pseudo-terminal.
///
/// It answers "GetUnitSerialNumber" with a value "thread.number" by this value, and notes every
/// such request that is not whole, comes together with another one, or comes out of its thread's
/// order. Everything else it answers as a simulated device does.
class WatchedDevice final : private orvex::sim::Talker {
  public:
    WatchedDevice();

    /// The port, "/tmp/.../ttyACM0".
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// How many numbered requests have come.
    [[nodiscard]] std::size_t numbered() const;
    /// The first things that were wrong; empty when nothing was.
    [[nodiscard]] std::vector<std::string> complaints() const;

  private:
    std::vector<orvex::sim::Transmission> receive(std::string_view bytes) override;
    std::vector<orvex::sim::Transmission> answer(const std::string& request);
    void note(const std::string& value);
    void complain(const std::string& what);

    orvex::sim::Conversation conversation_;
    const orvex::sim::TemporaryDirectory directory_;
    const std::string path_ = directory_.path() + "/ttyACM0";
    const orvex::sim::PseudoTerminal terminal_{path_};
    mutable std::mutex mutex_;
    std::string unfinished_;
    std::map<int, int> last_;  ///< The last number of each thread.
    std::size_t numbered_ = 0;
    std::vector<std::string> complaints_;
    // The last: its thread uses all others.
    orvex::sim::LineServer server_;
};

}  // namespace orvex_threads
