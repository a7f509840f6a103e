// Commands by their names.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/waiting.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::waitUntil;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The bytes that a model is sent for a command.
std::string sentFor(OrvexType model, const std::string& name, const std::string& value = "") {
    OpenLight light(model);
    light.command(name, value);
    return light.port.received();
}

Failure notSupported(const std::string& name, const std::string& model) {
    return {0xA0515013, "DriverException (0xa0515013): Command <" + name +
                            "> is not supported for type " + model};
}

TEST(Command, SendsThePrefixOfItsName) {
    EXPECT_EQ(sentFor(ORVEX_TYPE_ALDER, "GetLampHours"), "hh\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_BIRCH, "EnableExtendedCommands"), "jj\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_BIRCH, "GetIntensityH4"), "ii\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_MAPLE, "GetPowerFactor"), "??\r");
}

TEST(Command, AppendsTheValue) {
    EXPECT_EQ(sentFor(ORVEX_TYPE_ALDER, "SetIntensityH4", "12"), "i12\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "SetIntensity", "100,200"), "ip=100,200\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "TurnAllLedOn", ",1"), "on=a,1\r");
}

TEST(Command, SendsOneCarriageReturnBehindAPrefixThatHoldsOne) {
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "Connect"), "co\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "Disconnect"), "dc\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "GetLedHours"), "lh?\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "GetSoftwareVersion"), "sv?\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_TAMAR, "GetUnitStatus"), "us?\r");
}

TEST(Command, PutsAValueBehindTheCarriageReturnOfAPrefix) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    const LogCapture log;
    light.command("GetSoftwareVersion", "5");
    EXPECT_TRUE(waitUntil([&] { return light.port.received().size() >= 5; }));
    EXPECT_EQ(light.port.received(), "sv?\r5");
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: GetSoftwareVersion",
                                         "Send [sv?*] ->", " <-Received [ok*]"));
}

TEST(Command, SendsWillowsOddRows) {
    EXPECT_EQ(sentFor(ORVEX_TYPE_WILLOW, "GainSetting", "5"), "ga?5\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_WILLOW, "TurnAllLedOn"), "on=\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_WILLOW, "TurnAllLedOff"), "of=a\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_WILLOW, "dt=99999"), "dt?\r");
}

TEST(Command, SendsSprucesNotationAsItStands) {
    EXPECT_EQ(sentFor(ORVEX_TYPE_SPRUCE, "SetIntensity", "1"), "ip=wwww,xxxx,yyyy,zzzz1\r");
    EXPECT_EQ(sentFor(ORVEX_TYPE_SPRUCE, "SetStatesLED", "3"), "8Y3\r");
}

TEST(Command, LogsItsNameBeforeItsTraffic) {
    OpenLight light(ORVEX_TYPE_ALDER);
    const LogCapture log;
    EXPECT_EQ(light.command("GetLampHours"), "ok\r");
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: GetLampHours",
                                         "Send [hh*] ->", " <-Received [ok*]"));
}

TEST(Command, LogsItsNameAsInformation) {
    OpenLight light(ORVEX_TYPE_ALDER);
    const LogCapture log(0x2);
    light.command("GetLampHours");
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: GetLampHours"));
}

TEST(Command, RefusesAnUnknownNameForEveryModel) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_WILLOW; ++model) {
        OpenLight light(model);
        const LogCapture log;
        EXPECT_EQ(failureOf([&] { light.command("NoSuchCommand"); }),
                  notSupported("NoSuchCommand", std::string(1, static_cast<char>('0' + model))));
        EXPECT_THAT(log.lines(), IsEmpty());
        EXPECT_THAT(light.takeRequests(), IsEmpty());
    }
}

TEST(Command, RefusesANameInAnotherCaseForEveryModel) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_WILLOW; ++model) {
        OpenLight light(model);
        EXPECT_EQ(failureOf([&] { light.command("getlamphours"); }).first, 0xA0515013);
        EXPECT_EQ(failureOf([&] { light.command("connect"); }).first, 0xA0515013);
        EXPECT_EQ(failureOf([&] { light.command(""); }).first, 0xA0515013);
        EXPECT_THAT(light.takeRequests(), IsEmpty());
    }
}

TEST(Command, RefusesANameThatTheModelLacks) {
    EXPECT_EQ(failureOf([] { sentFor(ORVEX_TYPE_ALDER, "EnableExtendedCommands"); }),
              notSupported("EnableExtendedCommands", "0"));
    EXPECT_EQ(failureOf([] { sentFor(ORVEX_TYPE_SPRUCE, "MinimumIntensityPercentage"); }),
              notSupported("MinimumIntensityPercentage", "7"));
    EXPECT_EQ(failureOf([] { sentFor(ORVEX_TYPE_TAMAR, "ClearAlarm"); }),
              notSupported("ClearAlarm", "8"));
    EXPECT_EQ(failureOf([] { sentFor(ORVEX_TYPE_WILLOW, "SetScreenBrightness"); }),
              notSupported("SetScreenBrightness", "9"));
}

TEST(Command, LeavesTheReplyOfTheCallerWhenItsNameIsUnknown) {
    OpenLight light(ORVEX_TYPE_ALDER);
    std::string reply = "before";
    EXPECT_NE(failureOf([&] { light.device.executeCommand("NoSuchCommand", reply, ""); }),
              Failure());
    EXPECT_EQ(reply, "before");
}

TEST(Command, CountsPrefixAndValueAsOneRequest) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.command("SetIntensityH4", std::string(1022, '1'));
    EXPECT_EQ(light.port.received(), "i" + std::string(1022, '1') + "\r");
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light.command("SetIntensityH4", std::string(1023, '1')); }),
              Failure(0xA0515001, "DriverException (0xa0515001) "));
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: SetIntensityH4"));
}

TEST(Command, LooksItsNameUpBeforeTheConnection) {
    Light light(ORVEX_TYPE_ALDER);
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light.command("NoSuchCommand"); }).first, 0xA0515013);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(failureOf([&] { light.command("GetLampHours"); }).first, 0x80517006);
    EXPECT_THAT(log.lines(),
                ElementsAre("LightDevice::executeString: GetLampHours",
                            "Error: LightDevice::executeString: LightDevice is not connected."));
}

}  // namespace
