// Switching all channels, a lamp or a shutter.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

Failure notSupported(const std::string& commands, OrvexType model) {
    return {0xA0515013, "DriverException (0xa0515013): Command <" + commands +
                            "> is not supported for type " + std::to_string(model)};
}

/// A LED source with channels 1 and 3 on.
class Switching : public testing::Test {
  protected:
    Switching() {
        OrvexStruct record = light_.record();
        record.aChannels[0].iState = 1;
        record.aChannels[2].iState = 1;
        light_.device.setOVStruct(record);
        light_.port.clearRecord();
    }

    OpenLight light_{ORVEX_TYPE_WILLOW};
};

TEST_F(Switching, SwitchesOnWhatARecordLastSwitchedOn) {
    light_.device.switchOrvex(true, true);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("on=1,3\r"));
    EXPECT_TRUE(light_.device.getLampState());
}

TEST_F(Switching, SwitchesAllChannelsOff) {
    light_.device.switchOrvex(true, true);
    light_.port.clearRecord();
    light_.device.switchOrvex(true, false);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,4\r"));
    EXPECT_FALSE(light_.device.getLampState());
}

TEST_F(Switching, SendsNothingUnlessItIsEnabled) {
    const LogCapture log;
    light_.device.switchOrvex(false, true);
    EXPECT_FALSE(light_.device.getLampState());
    light_.device.switchOrvex(false, false);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Switching, KeepsItsStateUnlessItIsEnabled) {
    light_.device.switchOrvex(true, true);
    light_.device.switchOrvex(false, false);
    EXPECT_TRUE(light_.device.getLampState());
}

TEST_F(Switching, CanBeRepeated) {
    light_.device.switchOrvex(true, true);
    light_.device.switchOrvex(true, true);
    light_.device.switchOrvex(true, false);
    light_.device.switchOrvex(true, false);
    EXPECT_THAT(light_.takeRequests(),
                ElementsAre("on=1,3\r", "on=1,3\r", "of=1,2,3,4\r", "of=1,2,3,4\r"));
}

TEST_F(Switching, KeepsTheStatesInTheRecord) {
    light_.device.switchOrvex(true, false);
    EXPECT_EQ(light_.record().aChannels[0].iState, 1);
}

TEST_F(Switching, IsLogged) {
    const LogCapture log;
    light_.device.switchOrvex(true, true);
    light_.device.switchOrvex(true, false);
    EXPECT_THAT(
        log.lines(),
        ElementsAre("LightDevice::executeString: TurnLedOn",  //
                    "Send [on=1,3*] ->", " <-Received [ok*]", "switchInternalOn: succeed.",
                    "LightDevice::executeString: TurnLedOff",  //
                    "Send [of=1,2,3,4*] ->", " <-Received [ok*]", "switchInternalOff: succeed."));
}

TEST_F(Switching, LogsItsEndsAsDetails) {
    const LogCapture log(0x20);
    light_.device.switchOrvex(true, true);
    light_.device.switchOrvex(true, false);
    EXPECT_THAT(log.lines(),
                ElementsAre("switchInternalOn: succeed.", "switchInternalOff: succeed."));
}

TEST_F(Switching, KeepsItsStateWhenItIsRefused) {
    light_.refuse("TurnLedOn");
    EXPECT_EQ(failureOf([&] { light_.device.switchOrvex(true, true); }).first, 0x80515003);
    EXPECT_FALSE(light_.device.getLampState());
}

TEST_F(Switching, SwitchesGivenChannelsOn) {
    light_.device.switchInternalOn("2,4");
    EXPECT_THAT(light_.takeRequests(), ElementsAre("on=2,4\r"));
    EXPECT_FALSE(light_.device.getLampState());
    light_.device.switchOrvex(true, true);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("on=1,3\r"));
}

TEST(SwitchingWithoutChannels, SendsNothingAndCountsAsOn) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.device.switchOrvex(true, true);
    EXPECT_THAT(light.takeRequests(), IsEmpty());
    EXPECT_TRUE(light.device.getLampState());
}

TEST(SwitchingALamp, MovesItsShutter) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_MAPLE; ++model) {
        OpenLight light(model);
        const LogCapture log;
        light.device.switchInternalOn("");
        light.device.switchInternalOff();
        EXPECT_THAT(light.takeRequests(), ElementsAre("mm\r", "zz\r"));
        EXPECT_THAT(log.lines(),
                    ElementsAre("LightDevice::executeString: OpenShutter",  //
                                "Send [mm*] ->", " <-Received [ok*]", "switchInternalOn: succeed.",
                                "LightDevice::executeString: CloseShutter",  //
                                "Send [zz*] ->", " <-Received [ok*]"));
    }
}

TEST(SwitchingALamp, OnlyClosesItsShutter) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.device.switchOrvex(true, true);
    EXPECT_THAT(light.takeRequests(), IsEmpty());
    EXPECT_TRUE(light.device.getLampState());
    light.device.switchOrvex(true, false);
    EXPECT_THAT(light.takeRequests(), ElementsAre("zz\r"));
    EXPECT_FALSE(light.device.getLampState());
}

TEST(SwitchingRowan, IsNotPossible) {
    OpenLight light(ORVEX_TYPE_ROWAN);
    EXPECT_EQ(failureOf([&] { light.device.switchOrvex(true, false); }),
              notSupported("TurnLedOff", ORVEX_TYPE_ROWAN));
    EXPECT_EQ(failureOf([&] { light.device.switchInternalOn("1"); }),
              notSupported("TurnLedOn", ORVEX_TYPE_ROWAN));
}

TEST(LampState, IsSetOnEveryLamp) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_ROWAN; ++model) {
        OpenLight light(model);
        light.device.setLampState(true);
        light.device.setLampState(false);
        EXPECT_THAT(light.takeRequests(), ElementsAre("bb\r", "ss\r")) << model;
        EXPECT_FALSE(light.device.getLampState());
    }
}

TEST(LampState, IsNotWhatIsTold) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.device.setLampState(true);
    EXPECT_FALSE(light.device.getLampState());
}

TEST(LampState, IsRefusedByLedModels) {
    for (OrvexType model = ORVEX_TYPE_SPRUCE; model <= ORVEX_TYPE_WILLOW; ++model) {
        OpenLight light(model);
        const LogCapture log;
        const Failure expected = notSupported("TurnLampOn/Off", model);
        EXPECT_EQ(failureOf([&] { light.device.setLampState(true); }), expected);
        EXPECT_EQ(failureOf([&] { light.device.setLampState(false); }), expected);
        EXPECT_THAT(light.takeRequests(), IsEmpty());
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST(ShutterState, IsSetOnEveryLamp) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_ROWAN; ++model) {
        OpenLight light(model);
        light.device.setShutterState(true);
        light.device.setShutterState(false);
        EXPECT_THAT(light.takeRequests(), ElementsAre("mm\r", "zz\r")) << model;
    }
}

TEST(ShutterState, IsRefusedByLedModels) {
    for (OrvexType model = ORVEX_TYPE_SPRUCE; model <= ORVEX_TYPE_WILLOW; ++model) {
        OpenLight light(model);
        const Failure expected = notSupported("Open/CloseShutter", model);
        EXPECT_EQ(failureOf([&] { light.device.setShutterState(true); }), expected);
        EXPECT_EQ(failureOf([&] { light.device.setShutterState(false); }), expected);
        EXPECT_THAT(light.takeRequests(), IsEmpty());
    }
}

TEST(LampAndShutter, AreFollowedByAPause) {
    OpenLight light(ORVEX_TYPE_ALDER);
    const SkippedPauses pauses;
    light.device.setLampState(true);
    EXPECT_THAT(pauses.asked, ElementsAre(10ms));
    light.device.setShutterState(false);
    EXPECT_THAT(pauses.asked, ElementsAre(10ms, 10ms));
}

TEST(LampAndShutter, AreNotFollowedByAPauseWhenTheyAreRefused) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.refuse("TurnLampOn");
    light.refuse("OpenShutter");
    const SkippedPauses pauses;
    EXPECT_EQ(failureOf([&] { light.device.setLampState(true); }).first, 0x80515003);
    EXPECT_EQ(failureOf([&] { light.device.setShutterState(true); }).first, 0x80515003);
    EXPECT_THAT(pauses.asked, IsEmpty());
}

TEST(LampAndShutter, AreLookedUpBeforeTheConnection) {
    Light led(ORVEX_TYPE_WILLOW);
    EXPECT_EQ(failureOf([&] { led.device.setLampState(true); }).first, 0xA0515013);
    EXPECT_EQ(failureOf([&] { led.device.setShutterState(true); }).first, 0xA0515013);
    Light lamp(ORVEX_TYPE_ALDER);
    EXPECT_EQ(failureOf([&] { lamp.device.setLampState(true); }).first, 0x80517006);
    EXPECT_EQ(failureOf([&] { lamp.device.setShutterState(true); }).first, 0x80517006);
}

}  // namespace
