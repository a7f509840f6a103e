// Many threads, many exchanges; for ThreadSanitizer above all. In full: scripts/stress-threads.
#include <atomic>
#include <string>
#include <thread>

#include "include/qtr_orvex.h"
#include "tests/threads/fleet.h"

namespace {

using orvex_threads::exchangesPerThread;
using orvex_threads::Fleet;
using orvex_threads::inThreads;
using orvex_threads::kThreads;
using orvex_threads::reportRate;

class ExchangesStress : public Fleet {
  protected:
    /// Every thread makes its exchanges with every device, all of them in the same order, so that
    /// they keep meeting at the same device.
    void useAllDevices(std::size_t devices) {
        const int count = exchangesPerThread();
        const auto perDevice = static_cast<std::size_t>(count) * kThreads;
        attach(devices);
        std::atomic<int> wrong{0};
        reportRate(perDevice * devices, [&] {
            inThreads([&](int thread) {
                for (int number = 1; number <= count; ++number) {
                    for (std::size_t device = 0; device < devices; ++device) {
                        wrong += exchange(device, thread, number) ? 0 : 1;
                    }
                }
            });
        });
        EXPECT_EQ(wrong, 0);
        expectSeen(perDevice);
    }
};

TEST_F(ExchangesStress, OfEightThreadsWithEightDevicesEach) {
    useAllDevices(8);
}

TEST_F(ExchangesStress, OfEightThreadsWithOneDevice) {
    useAllDevices(1);
}

/// What one thread does with a device that is its own: everything but scanning.
void useAlone(std::uint64_t handle, int round) {
    OrvexStruct record{};
    record.iSize = sizeof record;
    ASSERT_EQ(ORVEX_OpenDeviceEx(handle), 0U);
    ASSERT_EQ(ORVEX_GetOVStruct(handle, &record), 0U);
    record.aChannels[round % 4].iState ^= 1;
    record.aChannels[round % 4].iIntensity = 100 + round % 50 * 10;
    ASSERT_EQ(ORVEX_SetOVStruct(handle, &record), 0U);
    OrvexStruct now{};
    now.iSize = sizeof now;
    ASSERT_EQ(ORVEX_GetOVStruct(handle, &now), 0U);
    ASSERT_EQ(now.aChannels[round % 4].iIntensity, record.aChannels[round % 4].iIntensity);
    ASSERT_EQ(ORVEX_SwitchOrvex(handle, round % 3 != 0, round % 2 == 0), 0U);
    ORVEX_CloseDevice(handle);
}

TEST_F(ExchangesStress, OfEveryCallBesideEachOther) {
    attach(8);
    const int count = exchangesPerThread() / 4;
    inThreads([&](int thread) {
        const auto own = static_cast<std::size_t>(thread);
        for (int round = 0; round < count; ++round) {
            useAlone(handle(own), round);
            std::uint32_t opens = 0;
            const std::size_t other = (own + 1) % kThreads;
            ASSERT_EQ(ORVEX_GetDeviceInfo(handle(other), nullptr, nullptr, 0, &opens), 0U);
            ASSERT_THAT(opens, testing::AnyOf(1U, 2U));
            ASSERT_TRUE(exchange(other, thread, round + 1));
        }
    });
    expectSeen(static_cast<std::size_t>(count));
}

TEST_F(ExchangesStress, OfThreadsThatOpenAndClose) {
    attach(8);
    const int count = exchangesPerThread() / 8;
    for (std::size_t device = 0; device < 8; ++device) {
        ORVEX_CloseDevice(handle(device));
    }
    inThreads([&](int thread) {
        const auto own = static_cast<std::size_t>(thread);
        for (int round = 1; round <= count; ++round) {
            ASSERT_EQ(ORVEX_OpenDeviceEx(handle(own)), 0U);
            ASSERT_TRUE(exchange(own, thread, round));
            ORVEX_CloseDevice(handle(own));
        }
    });
    expectSeen(static_cast<std::size_t>(count));
    for (std::size_t device = 0; device < 8; ++device) {
        ASSERT_EQ(ORVEX_OpenDeviceEx(handle(device)), 0U);
    }
}

}  // namespace
