// A device's last close.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::cacheOf;
using orvex_test::commandsOf;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::openDescriptors;
using orvex_test::OpenLight;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kDisconnected = "closeConnection: disconnected.";

std::string closingFailed(const std::string& request) {
    return "Error: LightDevice::closeConnection: execute CloseShutter failed. Exception: "
           "DriverException (0x80515003): LightDevice::executeString: Command \"" +
           request + "\" answered with error \"e\\r\"";
}

/// The bytes that a model is sent when it is closed.
std::string sentWhenClosed(OrvexType model, bool leaveShutter) {
    OpenLight light(model);
    light.device.closeConnection(leaveShutter);
    return light.port.received();
}

void expectReleased(OpenLight& light) {
    EXPECT_FALSE(orvex_test::hasLink(light.device));
    EXPECT_FALSE(light.device.isConnected());
    EXPECT_EQ(light.device.getOpenCount(), 0U);
    EXPECT_EQ(openDescriptors(light.port), 1U);
    OrvexStruct cleared{};
    cleared.iSize = 2008;
    EXPECT_EQ(std::memcmp(&cacheOf(light.device), &cleared, sizeof cleared), 0);
}

TEST(Closing, ClosesALampsShutter) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_MAPLE; ++model) {
        EXPECT_EQ(sentWhenClosed(model, false), "zz\r") << model;
    }
}

TEST(Closing, CanLeaveALampsShutter) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_MAPLE; ++model) {
        EXPECT_EQ(sentWhenClosed(model, true), "") << model;
    }
}

TEST(Closing, DisconnectsALedModel) {
    EXPECT_EQ(sentWhenClosed(ORVEX_TYPE_TAMAR, false), "dc\r");
    EXPECT_EQ(sentWhenClosed(ORVEX_TYPE_TAMAR, true), "dc\r");
    EXPECT_EQ(sentWhenClosed(ORVEX_TYPE_WILLOW, false), "dc\r");
    EXPECT_EQ(sentWhenClosed(ORVEX_TYPE_WILLOW, true), "dc\r");
}

TEST(Closing, SendsNothingToAHalfOpenDevice) {
    EXPECT_EQ(sentWhenClosed(ORVEX_TYPE_ROWAN, false), "");
    EXPECT_EQ(sentWhenClosed(ORVEX_TYPE_SPRUCE, false), "");
}

TEST(Closing, ReleasesThePortAndClearsTheRecord) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(light.device.closeConnection(false), 0);
    expectReleased(light);
}

TEST(Closing, LogsALampsClose) {
    OpenLight light(ORVEX_TYPE_ALDER);
    const LogCapture log;
    light.device.closeConnection(false);
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: CloseShutter",
                                         "Send [zz*] ->", " <-Received [ok*]", kDisconnected));
}

TEST(Closing, LogsALedModelsClose) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    const LogCapture log;
    light.device.closeConnection(false);
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: Disconnect", "Send [dc*] ->",
                                         " <-Received [ok*]", kDisconnected));
}

TEST(Closing, GoesOnAfterARefusedCloseOfTheShutter) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.refuse("CloseShutter");
    const LogCapture log;
    EXPECT_EQ(light.device.closeConnection(false), 0);
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: CloseShutter",
                                         "Send [zz*] ->", closingFailed("zz"), kDisconnected));
    expectReleased(light);
}

TEST(Closing, GoesOnAfterARefusedDisconnect) {
    OpenLight light(ORVEX_TYPE_WILLOW);
    light.refuse("Disconnect");
    const LogCapture log;
    EXPECT_EQ(light.device.closeConnection(false), 0);
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: Disconnect", "Send [dc*] ->",
                                         closingFailed("dc"), kDisconnected));
    expectReleased(light);
}

TEST(Closing, GoesOnWhenThePortHasEnded) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.port.hangUp();
    const LogCapture log;
    EXPECT_EQ(light.device.closeConnection(false), 0);
    EXPECT_THAT(log.lines(),
                ElementsAre("LightDevice::executeString: CloseShutter", "Send [zz*] ->",
                            "Error: SerialLink::purge: Error 5 from ioctl: Input/output error",
                            "Error: LightDevice::closeConnection: execute CloseShutter failed. "
                            "Exception: DriverException (0x80515003): SerialLink::purge: read.",
                            "Error: SerialLink::~SerialLink: set tty attributes. Error 5 from "
                            "tcsetattr: Input/output error",
                            kDisconnected));
    EXPECT_FALSE(light.device.isConnected());
}

// No model has both commands; the rule for one that has is kept all the same.
class ClosingBoth : public testing::Test {
  protected:
    ClosingBoth() { commandsOf(light_.device)["CloseShutter"] = "cs"; }

    OpenLight light_{ORVEX_TYPE_TAMAR};
};

TEST_F(ClosingBoth, ClosesTheShutterBeforeItDisconnects) {
    light_.device.closeConnection(false);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("cs\r", "dc\r"));
}

TEST_F(ClosingBoth, OnlyDisconnectsWhenTheShutterIsLeft) {
    light_.device.closeConnection(true);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("dc\r"));
}

TEST_F(ClosingBoth, DoesNotDisconnectAfterARefusedCloseOfTheShutter) {
    light_.port.addFault(orvex::sim::onRequest("cs"), orvex::sim::errorReply());
    light_.device.closeConnection(false);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("cs\r"));
    expectReleased(light_);
}

TEST(ClosedDevice, CanBeOpenedAgain) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.device.closeConnection(false);
    light.port.clearRecord();
    light.open();
    EXPECT_EQ(light.port.received(), "co\rlw?\rus?\rni?\rip?\rgt?\rln?\rsn?\r");
    EXPECT_EQ(light.device.getOpenCount(), 1U);
    EXPECT_EQ(light.record().iSerialNumber, 42);
}

TEST(ClosedDevice, ForgetsThatItWasSwitchedOn) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.device.switchOrvex(true, true);
    ASSERT_TRUE(light.device.getLampState());
    light.device.closeConnection(false);
    EXPECT_FALSE(light.device.getLampState());
}

TEST(ClosedDevice, IsSwitchedLikeALamp) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.device.closeConnection(false);
    EXPECT_EQ(failureOf([&] { light.device.switchOrvex(true, false); }),
              Failure(0xA0515013,
                      "DriverException (0xa0515013): Command <CloseShutter> is not supported for "
                      "type 8"));
    OpenLight lamp(ORVEX_TYPE_ALDER);
    lamp.device.closeConnection(true);
    EXPECT_EQ(failureOf([&] { lamp.device.switchOrvex(true, false); }).first, 0x80517006);
}

TEST(ClosedDevice, TakesARecordLikeALamp) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.device.closeConnection(false);
    OrvexStruct record = light.record();
    record.iNumChannels = 1;
    record.aChannels[0].iIntensity = 10;
    EXPECT_EQ(failureOf([&] { light.device.setOVStruct(record); }),
              Failure(0xA0515013,
                      "DriverException (0xa0515013): Command <SetIntensityH4> is not supported for "
                      "type 8"));
}

}  // namespace
