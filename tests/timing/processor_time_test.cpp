// What waiting for a device costs.
#include <gtest/gtest.h>

#include <array>
#include <ctime>

#include "sim/fault.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;
using orvex::sim::onAny;
using orvex::sim::silence;

std::chrono::nanoseconds processorTime() {
    timespec time{};
    EXPECT_EQ(::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time), 0);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Expects an action of at least @p least to keep a processor busy for less than a hundredth of it.
template <typename Action>
void expectIdle(const char* what, std::chrono::milliseconds least, Action action) {
    const auto begin = std::chrono::steady_clock::now();
    const auto before = processorTime();
    action();
    const auto used = processorTime() - before;
    const auto taken = std::chrono::steady_clock::now() - begin;
    std::printf("%s: %.3f ms of a processor in %.0f ms\n", what, 1e-6 * double(used.count()),
                1e-6 * double(taken.count()));
    EXPECT_GE(taken, least);
    EXPECT_LT(100 * used, taken);
}

class ProcessorTime : public testing::Test {
  protected:
    std::uint32_t command() const {
        std::array<char, 64> reply{};
        return ORVEX_ExecuteCommand(light_.handle, "GetLedHours", reply.data(), reply.size());
    }

    ThreadLog log_{LOG_BIT_ERROR};
    RegisteredLight light_{ORVEX_TYPE_TAMAR};
};

TEST_F(ProcessorTime, IsNotSpentOnASilentDevice) {
    ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    light_.device.addFault(onAny(), silence());
    expectIdle("silent device", 6s, [this] {
        for (int exchange = 0; exchange < 3; ++exchange) {
            EXPECT_EQ(command(), ORVEX_ERR_RECV);
        }
    });
}

TEST_F(ProcessorTime, IsNotSpentOnASlowDevice) {
    ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    orvex::sim::Fault slow = orvex::sim::scripted("0123456789\r");
    slow.bytePause = 300ms;
    light_.device.addFault(onAny(), slow);
    expectIdle("slow device", 3s, [this] { EXPECT_EQ(command(), ORVEX_OK); });
}

TEST_F(ProcessorTime, IsNotSpentOnAGroupThatSettles) {
    light_.device.change([](auto& state) { state.settleDelay = 4s; });
    ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    OrvexStruct record{};
    record.iSize = sizeof record;
    ASSERT_EQ(ORVEX_GetOVStruct(light_.handle, &record), ORVEX_OK);
    record.aChannels[3].iState = 1;
    expectIdle("settling group", 4s,
               [&] { EXPECT_EQ(ORVEX_SetOVStruct(light_.handle, &record), ORVEX_OK); });
}

}  // namespace
