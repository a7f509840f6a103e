/// @file
/// How late this machine lets threads run.
#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace orvex_test {

/// A thread that sleeps again and again and adds up by how much it woke too late. What a busy
/// machine did to it, it may have done to any other thread.
class SchedulingDelay {
  public:
    using Nanoseconds = std::chrono::nanoseconds;

    SchedulingDelay() : thread_([this] { run(); }) {}
    SchedulingDelay(const SchedulingDelay&) = delete;
    SchedulingDelay& operator=(const SchedulingDelay&) = delete;
    ~SchedulingDelay() {
        stopping_ = true;
        thread_.join();
    }

    /// The sum so far.
    [[nodiscard]] Nanoseconds soFar() const { return Nanoseconds(late_.load()); }

  private:
    void run() {
        constexpr auto kNap = std::chrono::milliseconds(5);
        while (!stopping_) {
            const auto begin = std::chrono::steady_clock::now();
            std::this_thread::sleep_for(kNap);
            late_ += Nanoseconds(std::chrono::steady_clock::now() - begin - kNap).count();
        }
    }

    std::atomic<bool> stopping_{false};
    std::atomic<Nanoseconds::rep> late_{0};
    std::thread thread_;
};

}  // namespace orvex_test
