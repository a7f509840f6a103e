/// @file
/// Devices that the library has found and opened, and threads that use them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/threads/watched_device.h"

namespace orvex_threads {

constexpr int kThreads = 8;

/// How many exchanges each thread makes with a device: few, or as many as ORVEX_STRESS_EXCHANGES in
/// the environment says, but at least 8.
[[nodiscard]] int exchangesPerThread();

/// Runs @p work in eight threads at once; it gets its thread's number.
void inThreads(const std::function<void(int thread)>& work);

/// Open devices; without a log at first.
class Fleet : public testing::Test {
  protected:
    Fleet();
    /// Closes all devices and lets the library forget them.
    ~Fleet() override;

    /// Attaches so many devices and opens them.
    void attach(std::size_t count);
    /// One exchange whose request and reply no other thread or exchange has.
    /// @return whether the reply was the request's own
    [[nodiscard]] bool exchange(std::size_t device, int thread, int number) const;
    /// Every device has seen so many requests of the threads, each whole and in order.
    void expectSeen(std::size_t requestsEach) const;

    [[nodiscard]] std::uint64_t handle(std::size_t device) const { return handles_[device]; }

  private:
    void scan();

    std::vector<std::unique_ptr<WatchedDevice>> devices_;
    std::vector<std::uint64_t> handles_;
};

/// Tells how fast it was, for whoever runs many exchanges.
void reportRate(std::size_t exchanges, const std::function<void()>& work);

}  // namespace orvex_threads
