// Groups that do not settle: the one wait of a call on an answering device that has no limit.
#include <gtest/gtest.h>

#include <array>
#include <future>

#include "sim/fault.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;
using orvex::sim::errorReply;
using orvex::sim::onCommand;
using orvex::sim::silence;

// Of a Tamar's group: record slots 3 and 4 are positions 5 and 6.
constexpr int kFirst = 3;
constexpr int kSecond = 4;

class Settling : public testing::Test {
  protected:
    Settling() { EXPECT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK); }

    std::uint32_t light(int slot) const {
        OrvexStruct record{};
        record.iSize = sizeof record;
        EXPECT_EQ(ORVEX_GetOVStruct(light_.handle, &record), ORVEX_OK);
        for (int k = kFirst; k <= kSecond; ++k) {
            record.aChannels[k].iState = k == slot ? 1 : 0;
        }
        return ORVEX_SetOVStruct(light_.handle, &record);
    }
    std::uint32_t command(const char* name, const char* value) const {
        std::array<char, 64> reply{};
        return ORVEX_ExecuteCommandWithValue(light_.handle, name, reply.data(), reply.size(),
                                             value);
    }
    static bool goesOn(std::future<std::uint32_t>& call) {
        constexpr auto kLong = kGroupPause + 30 * kPollPause;
        return call.wait_for(kLong) == std::future_status::timeout;
    }

    ThreadLog log_{LOG_BIT_ERROR};
    RegisteredLight light_{ORVEX_TYPE_TAMAR};
};

TEST_F(Settling, IsWaitedForAsLongAsTheDeviceAnswers) {
    light_.device.replyWith("GetUnitStatus", "0,0,0,0,0,0,0,0\r");
    auto call = std::async(std::launch::async, [this] { return light(kFirst); });
    EXPECT_TRUE(goesOn(call));
    light_.device.clearFaults();
    EXPECT_EQ(call.get(), ORVEX_OK);
}

TEST_F(Settling, EndsWithADeviceThatFallsSilent) {
    light_.device.replyWith("GetUnitStatus", "0,0,0,0,0,0,0,0\r");
    auto call = std::async(std::launch::async, [this] { return light(kFirst); });
    EXPECT_TRUE(goesOn(call));
    light_.device.addFault(onCommand("GetUnitStatus"), silence());
    EXPECT_EQ(call.get(), ORVEX_ERR_RECV);
}

/// A record that failed half-way: the cache has the second channel on, the device the first.
class HalfSettled : public Settling {
  protected:
    HalfSettled() {
        EXPECT_EQ(light(kFirst), ORVEX_OK);
        light_.device.addFault(onCommand("TurnLedOff").nth(1), errorReply());
        EXPECT_EQ(light(kSecond), ORVEX_ERR_IO);
    }
};

// The device is sound, and yet the call does not end by itself. Other threads' commands go through
// meanwhile, and one that brings the device to what the cache says ends it.
TEST_F(HalfSettled, SwitchingOnWaitsUntilTheDeviceIsAsTheCache) {
    auto call = std::async(std::launch::async,
                           [this] { return ORVEX_SwitchOrvex(light_.handle, true, true); });
    EXPECT_TRUE(goesOn(call));
    EXPECT_EQ(command("TurnLedOff", "5"), ORVEX_OK);
    EXPECT_EQ(command("TurnLedOn", "6"), ORVEX_OK);
    EXPECT_EQ(call.get(), ORVEX_OK);
}

TEST_F(HalfSettled, ClosingAndOpeningHelps) {
    ORVEX_CloseDevice(light_.handle);
    EXPECT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    EXPECT_EQ(light(kSecond), ORVEX_OK);
    EXPECT_EQ(ORVEX_SwitchOrvex(light_.handle, true, true), ORVEX_OK);
    EXPECT_FALSE(light_.device.state().channels[4].on);
    EXPECT_TRUE(light_.device.state().channels[5].on);
}

// What a program meets that closes a device it could not open.
TEST(ClosedAfterAFailedOpen, IsOpenedByASecondAttempt) {
    const ThreadLog log(LOG_BIT_ERROR);
    RegisteredLight light(ORVEX_TYPE_TAMAR);
    light.device.addFault(onCommand("GetNameLED").nth(1), errorReply());
    ASSERT_EQ(ORVEX_OpenDeviceEx(light.handle), ORVEX_ERR_IO);
    ORVEX_CloseDevice(light.handle);
    std::uint32_t opens = 0;
    EXPECT_EQ(ORVEX_OpenDeviceEx(light.handle), ORVEX_OK);
    EXPECT_EQ(ORVEX_GetDeviceInfo(light.handle, nullptr, nullptr, 0, &opens), ORVEX_OK);
    EXPECT_EQ(opens, 0U);
    EXPECT_EQ(ORVEX_OpenDeviceEx(light.handle), ORVEX_OK);
    EXPECT_EQ(ORVEX_GetDeviceInfo(light.handle, nullptr, nullptr, 0, &opens), ORVEX_OK);
    EXPECT_EQ(opens, 1U);
}

}  // namespace
