/// @file
/// A simulated device without a port: bytes in, replies out.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sim/command_lookup.h"
#include "sim/device_state.h"
#include "sim/fault.h"
#include "sim/talker.h"
#include "sim/traffic_record.h"

namespace orvex::sim {

/// Which way bytes went.
enum class Direction { toDevice, toClient };

/// Sees the bytes as they come and go; runs in the thread that moves them.
using Observer = std::function<void(Direction, std::string_view bytes)>;

/// One device's side of the protocol.
///
/// Requests end in a carriage return, replies too; a request that cannot be understood, or whose
/// value is not valid, is answered "e". The byte "A" at a request's place is answered at once, by
/// "A". receive() is for one thread at a time, everything else for any.
class Conversation final : public Talker {
  public:
    /// @throws std::invalid_argument when there is no such model
    explicit Conversation(const DeviceSetup& setup);

    [[nodiscard]] std::vector<Transmission> receive(std::string_view bytes) override;
    /// receive() without the timing: all the reply bytes in one.
    [[nodiscard]] std::string exchange(std::string_view bytes);
    /// Forgets a request that has begun: a client has opened the port anew, or the line was cut.
    void forgetPartialRequest() noexcept;

    /// The state now, a copy.
    [[nodiscard]] DeviceState state() const;
    /// Changes the state in one step, for example `[](DeviceState& s) { s.alarm = true; }`.
    void change(const std::function<void(DeviceState&)>& edit);

    [[nodiscard]] FaultScript& faults() noexcept { return faults_; }
    [[nodiscard]] TrafficRecord& record() noexcept { return record_; }
    [[nodiscard]] const TrafficRecord& record() const noexcept { return record_; }

  private:
    void answer(const std::string& request, std::vector<Transmission>& out);
    [[nodiscard]] std::string perform(const Match& match);

    CommandLookup lookup_;
    std::string partial_;
    FaultScript faults_;
    TrafficRecord record_;
    mutable std::mutex mutex_;
    DeviceState state_;
};

}  // namespace orvex::sim
