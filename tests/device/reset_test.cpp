// Clearing a device's cached state.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::cacheOf;
using orvex_test::failureOf;
using orvex_test::groupedReadOut;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Reset : public testing::Test {
  protected:
    void switchOn(int slot) {
        OrvexStruct record = light_.record();
        record.aChannels[slot].iState ^= 1;
        light_.device.setOVStruct(record);
    }

    OpenLight light_{ORVEX_TYPE_TAMAR, groupedReadOut()};
};

TEST_F(Reset, ClearsTheRecord) {
    std::memset(&cacheOf(light_.device), 0x5A, sizeof(OrvexStruct));
    light_.device.resetDevice();
    OrvexStruct cleared{};
    cleared.iSize = 2008;
    EXPECT_EQ(std::memcmp(&cacheOf(light_.device), &cleared, sizeof cleared), 0);
}

TEST_F(Reset, SendsAndLogsNothing) {
    const LogCapture log;
    light_.device.resetDevice();
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Reset, KeepsTheConnection) {
    light_.open();
    light_.device.resetDevice();
    EXPECT_TRUE(light_.device.isConnected());
    EXPECT_EQ(light_.device.getOpenCount(), 2U);
    EXPECT_EQ(light_.device.getType(), 8U);
    EXPECT_EQ(light_.device.getComPort(), light_.port.path());
    EXPECT_EQ(light_.exchange("GI"), "ok\r");
}

TEST_F(Reset, ForgetsWhatWasSwitchedOn) {
    switchOn(0);
    light_.device.resetDevice();
    light_.port.clearRecord();
    light_.device.switchOrvex(true, true);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
}

TEST_F(Reset, ForgetsTheListOfAllChannels) {
    light_.device.resetDevice();
    light_.refuse("GetUnitStatus");
    EXPECT_EQ(failureOf([&] { light_.device.initDevice(); }).first, 0x80515003);
    light_.port.clearRecord();
    light_.device.switchInternalOff();
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=\r"));
}

TEST_F(Reset, ForgetsThatTheDeviceIsOn) {
    light_.device.switchOrvex(true, true);
    light_.device.resetDevice();
    EXPECT_FALSE(light_.device.getLampState());
}

TEST_F(Reset, ForgetsThatSwitchingIsEnabled) {
    light_.device.switchOrvex(true, false);
    light_.device.resetDevice();
    light_.device.initDevice();
    light_.port.clearRecord();
    switchOn(0);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=2,3,4,5,6,7,8\r", "on=1\r"));
}

TEST_F(Reset, ForgetsAChangedGroup) {
    light_.port.addFault(orvex::sim::onCommand("TurnLedOn").nth(1), orvex::sim::errorReply());
    EXPECT_EQ(failureOf([&] { switchOn(3); }).first, 0x80515003);
    light_.device.resetDevice();
    light_.device.initDevice();
    light_.port.replyWith("GetUnitStatus", "\r");
    const SkippedPauses pauses;
    light_.device.switchInternalOn("4");
    EXPECT_THAT(pauses.asked, IsEmpty());
}

TEST_F(Reset, LeavesADeviceThatIsSwitchedLikeALamp) {
    light_.device.resetDevice();
    EXPECT_EQ(failureOf([&] { light_.device.switchInternalOn("1"); }).second,
              "DriverException (0xa0515013): Command <OpenShutter> is not supported for type 8");
}

}  // namespace
