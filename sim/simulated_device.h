/// @file
/// A simulated device on a pseudo-terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "sim/conversation.h"
#include "sim/line_server.h"
#include "sim/pseudo_terminal.h"

namespace orvex::sim {

/// One of the ten models, answering on a port of its own in a thread of its own.
///
/// Clients may open and close the port as often as they like. Everything may be called from any
/// thread; the observer runs in the device's thread and must not call back.
class SimulatedDevice {
  public:
    /// Plugs the device in.
    /// @throws std::invalid_argument when there is no such model
    /// @throws std::system_error when no pseudo-terminal can be had
    explicit SimulatedDevice(const DeviceSetup& setup, Observer observer = {});
    /// @param hangsUp called in the device's thread after a fault has ended the port
    SimulatedDevice(const DeviceSetup& setup, Observer observer, std::function<void()> hangsUp);
    SimulatedDevice(const SimulatedDevice&) = delete;
    SimulatedDevice& operator=(const SimulatedDevice&) = delete;
    ~SimulatedDevice();

    /// The port as a client opens it: a link ".../ttyACM0" in a private temporary directory. It is
    /// there while the device is plugged in, and the same after plugging in again.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// The terminal behind the link, "/dev/pts/7"; empty while pulled out.
    [[nodiscard]] std::string slavePath() const;

    /// Pulls the device out: a client that has the port open finds it ended.
    void hangUp();
    /// Plugs the device in after hangUp(), or a fault of that kind; its state is as it was. Nothing
    /// happens when it is plugged in.
    void plugIn();
    [[nodiscard]] bool isPluggedIn() const;

    [[nodiscard]] OrvexType model() const noexcept { return model_; }
    /// The state now, a copy: `device.state().channels[2].on`.
    [[nodiscard]] DeviceState state() const { return conversation_.state(); }
    /// Changes the state in one step: `device.change([](auto& s) { s.alarm = true; })`.
    void change(const std::function<void(DeviceState&)>& edit) { conversation_.change(edit); }

    /// Every byte received.
    [[nodiscard]] std::string received() const { return conversation_.record().received(); }
    /// The requests with their carriage returns; a presence byte is a request "A".
    [[nodiscard]] std::vector<std::string> requests() const {
        return conversation_.record().requests();
    }
    void clearRecord() { conversation_.record().clear(); }
    /// Waits until the record holds so many requests; each has been carried out by then.
    /// @return false when they did not come in time
    [[nodiscard]] bool waitForRequests(
        std::size_t count, std::chrono::milliseconds timeout = std::chrono::seconds(10)) const {
        return conversation_.record().waitForRequests(count, timeout);
    }

    /// Makes a fault happen: `device.addFault(onCommand("Connect").nth(2), silence())`.
    void addFault(const Trigger& trigger, const Fault& fault);
    void clearFaults() { conversation_.faults().clear(); }
    /// Answers a command with these bytes from now on: `replyWith("GetUnitStatus", "1,0,1\r")`.
    void replyWith(const std::string& command, const std::string& bytes);

    [[nodiscard]] Conversation& conversation() noexcept { return conversation_; }

  private:
    void endPort();
    void hangUpByItself();

    const OrvexType model_;
    const Observer observer_;
    const std::function<void()> hangsUp_;
    Conversation conversation_;
    const TemporaryDirectory directory_;
    const std::string path_;
    std::mutex plugging_;
    std::unique_ptr<LineServer> server_;  // guarded by plugging_
    mutable std::mutex mutex_;
    std::unique_ptr<PseudoTerminal> terminal_;  // guarded by mutex_
};

}  // namespace orvex::sim
