/// @file
/// What a simulated device has received.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::sim {

/// Every byte received and every whole request. For any thread.
class TrafficRecord {
  public:
    void addBytes(std::string_view bytes);
    void addRequest(std::string request);

    [[nodiscard]] std::string received() const;
    [[nodiscard]] std::vector<std::string> requests() const;
    void clear();
    /// Off: nothing more is kept, for a device that serves for days.
    void keep(bool on);

    /// Waits until so many requests have been answered since the last clear().
    /// @return false when they did not come in time
    [[nodiscard]] bool waitForRequests(std::size_t count, std::chrono::milliseconds timeout) const;

  private:
    mutable std::mutex mutex_;
    mutable std::condition_variable grown_;
    std::string received_;
    std::vector<std::string> requests_;
    bool kept_ = true;
};

}  // namespace orvex::sim
