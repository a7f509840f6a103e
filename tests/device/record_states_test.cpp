// States of a written record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::ReadOut;
using orvex_test::slotsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// LEDs at positions 0, 2 and 3 of four.
ReadOut withAGap() {
    ReadOut readOut;
    readOut.wavelengths = "365,999,470,525\r";
    return readOut;
}

/// Writes the states of the first slots.
void write(OpenLight& light, std::initializer_list<std::int32_t> states) {
    OrvexStruct record = light.record();
    int slot = 0;
    for (const std::int32_t state : states) {
        record.aChannels[slot++].iState = state;
    }
    light.device.setOVStruct(record);
}

class States : public testing::Test {
  protected:
    OpenLight light_{ORVEX_TYPE_TAMAR, withAGap()};
};

TEST_F(States, AreSentOffBeforeOn) {
    write(light_, {0, 1, 0});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,4\r", "on=3\r"));
    EXPECT_EQ(light_.record().aChannels[1].iState, 1);
}

TEST_F(States, AreSentForAllPositions) {
    write(light_, {1, 1, 1});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=2\r", "on=1,3,4\r"));
    write(light_, {1, 0, 1});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=2,3\r", "on=1,4\r"));
}

TEST_F(States, NeedNoOnRequestWhenNothingIsOn) {
    write(light_, {1});
    light_.port.clearRecord();
    const LogCapture log;
    write(light_, {0});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,4\r"));
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: TurnLedOff",
                                         "Send [of=1,2,3,4*] ->", " <-Received [ok*]"));
}

TEST_F(States, AreLogged) {
    const LogCapture log;
    write(light_, {1, 0, 1});
    EXPECT_THAT(
        log.lines(),
        ElementsAre("LightDevice::executeString: TurnLedOff",  //
                    "Send [of=2,3*] ->", " <-Received [ok*]",
                    "LightDevice::executeString: TurnLedOn",  //
                    "Send [on=1,4*] ->", " <-Received [ok*]", "switchInternalOn: succeed."));
}

TEST(AllStates, NeedNoOffRequestWhenEverythingIsOn) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    write(light, {1, 1, 1, 1});
    EXPECT_THAT(light.takeRequests(), ElementsAre("on=1,2,3,4\r"));
}

TEST_F(States, AreTheirLowestBit) {
    write(light_, {2, 3, -1});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2\r", "on=3,4\r"));
    EXPECT_EQ(light_.record().aChannels[0].iState, 2);
    EXPECT_EQ(light_.record().aChannels[1].iState, 3);
}

TEST_F(States, AreSentWhenAnotherBitDiffers) {
    write(light_, {4});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,4\r"));
}

TEST_F(States, WerePartlyOnBefore) {
    light_.port.replyWith("GetUnitStatus", "0,1,1,0\r");
    light_.device.initDevice();
    light_.port.clearRecord();
    write(light_, {1});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=4\r", "on=1,2,3\r"));
}

TEST_F(States, StayStoredWhenSwitchingOffIsRefused) {
    light_.refuse("TurnLedOff");
    EXPECT_EQ(failureOf([&] { write(light_, {1}); }).first, 0x80515003);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=2,3,4\r"));
    EXPECT_EQ(light_.record().aChannels[0].iState, 1);
    light_.device.switchOrvex(true, true);
    EXPECT_THAT(light_.takeRequests(), IsEmpty()) << "nothing has been switched on yet";
}

TEST_F(States, AreRememberedWhenSwitchingOnIsRefused) {
    light_.port.addFault(orvex::sim::onCommand("TurnLedOn").nth(1), orvex::sim::errorReply());
    EXPECT_EQ(failureOf([&] { write(light_, {1}); }).first, 0x80515003);
    light_.port.clearRecord();
    light_.device.switchOrvex(true, true);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("on=1\r"));
}

TEST(SwitchedOffStates, AreOnlyRemembered) {
    OpenLight light(ORVEX_TYPE_TAMAR, withAGap());
    light.device.switchOrvex(true, false);
    light.port.clearRecord();
    write(light, {1, 1});
    EXPECT_THAT(light.takeRequests(), ElementsAre("of=2,4\r"));
    light.device.switchOrvex(true, true);
    EXPECT_THAT(light.takeRequests(), ElementsAre("on=1,3\r"));
}

TEST(SwitchedOffStates, AreSentWhenSwitchedOnAgain) {
    OpenLight light(ORVEX_TYPE_TAMAR, withAGap());
    light.device.switchOrvex(true, false);
    light.device.switchOrvex(true, true);
    light.port.clearRecord();
    write(light, {1});
    EXPECT_THAT(light.takeRequests(), ElementsAre("of=2,3,4\r", "on=1\r"));
}

TEST(SwitchedOffStates, AreSentWhenSwitchingIsNotEnabled) {
    OpenLight light(ORVEX_TYPE_TAMAR, withAGap());
    light.device.switchOrvex(true, false);
    light.device.switchOrvex(false, false);
    light.port.clearRecord();
    write(light, {1});
    EXPECT_THAT(light.takeRequests(), ElementsAre("of=2,3,4\r", "on=1\r"));
}

TEST(SwitchedOffStates, MayBecomeNothing) {
    OpenLight light(ORVEX_TYPE_TAMAR, withAGap());
    write(light, {1});
    light.device.switchOrvex(true, false);
    write(light, {0});
    light.port.clearRecord();
    light.device.switchOrvex(true, true);
    EXPECT_THAT(light.takeRequests(), IsEmpty());
}

TEST(SpruceStates, GoBehindTheDevicesNotation) {
    OpenLight light(ORVEX_TYPE_SPRUCE);
    write(light, {1, 1});
    EXPECT_THAT(light.takeRequests(), ElementsAre("of=w,x,y,z3,4\r", "on=w,x,y,z1,2\r"));
}

// Records of lamps have no slots; what a lamp is sent for one is kept all the same.
class LampStates : public testing::TestWithParam<OrvexType> {
  protected:
    LampStates() { slotsOf(light_.device).push_back(0); }

    OpenLight light_{GetParam()};
};

TEST_P(LampStates, MoveTheShutter) {
    const LogCapture log;
    write(light_, {1});
    write(light_, {0});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("mm\r", "zz\r"));
    EXPECT_THAT(log.lines(),
                ElementsAre("LightDevice::executeString: OpenShutter",  //
                            "Send [mm*] ->", " <-Received [ok*]", "switchInternalOn: succeed.",
                            "LightDevice::executeString: CloseShutter",  //
                            "Send [zz*] ->", " <-Received [ok*]"));
}

INSTANTIATE_TEST_SUITE_P(AlderToMaple, LampStates,
                         testing::Range(ORVEX_TYPE_ALDER, ORVEX_TYPE_ROWAN));

}  // namespace
