/// @file
/// A simulated device on the device's end of a USB serial port.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "sim/conversation.h"
#include "sim/pseudo_terminal.h"

namespace orvex_test {

/// Answers on the line of a gadget. Unplugging ends the line; it is opened again at once.
class DeviceSide {
  public:
    /// @param line "/dev/ttyGS0"
    DeviceSide(std::string line, const orvex::sim::DeviceSetup& setup);
    DeviceSide(const DeviceSide&) = delete;
    DeviceSide& operator=(const DeviceSide&) = delete;
    ~DeviceSide();

    [[nodiscard]] orvex::sim::Conversation& conversation() noexcept { return conversation_; }
    [[nodiscard]] const orvex::sim::Conversation& conversation() const noexcept {
        return conversation_;
    }
    /// How many bytes were sent since the beginning.
    [[nodiscard]] std::size_t sent() const noexcept { return sent_; }

  private:
    void run(orvex::sim::Descriptor line);
    void serve(const orvex::sim::Descriptor& line);

    const std::string path_;
    orvex::sim::Conversation conversation_;
    std::atomic<std::size_t> sent_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
    bool ended_ = false;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace orvex_test
