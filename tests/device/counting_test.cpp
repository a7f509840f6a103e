// Several opens of one device.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::handleText;
using orvex_test::kBaud;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kOpenedAgain =
    "LightDevice::openConnection: LightDevice openend again. connection_count_: ";

std::string stillOpen(LightDevice& device, const std::string& count) {
    return "Closed 1x device " + handleText(&device) + ". Is still open " + count + " time(s).";
}

TEST(Counting, AddsALaterOpenWithoutARequest) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    const LogCapture log;
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 2U);
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 3U);
    EXPECT_THAT(log.lines(), ElementsAre(kOpenedAgain + "2", kOpenedAgain + "3"));
    EXPECT_THAT(light.takeRequests(), IsEmpty());
}

TEST(Counting, IgnoresTheBaudRateOfALaterOpen) {
    OpenLight light(ORVEX_TYPE_ALDER);
    EXPECT_EQ(light.device.openConnection(0), light.device.hDev());
    EXPECT_EQ(light.device.openConnection(9599), light.device.hDev());
    EXPECT_EQ(light.device.openConnection(115200), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 4U);
}

TEST(Counting, TakesAnOpenBackWithoutARequest) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.open();
    light.open();
    const LogCapture log;
    EXPECT_EQ(light.device.closeConnection(false), 0);
    EXPECT_EQ(light.device.closeConnection(true), 0);
    EXPECT_THAT(log.lines(),
                ElementsAre(stillOpen(light.device, "2"), stillOpen(light.device, "1")));
    EXPECT_THAT(light.takeRequests(), IsEmpty());
    EXPECT_TRUE(light.device.isConnected());
    EXPECT_EQ(light.device.getOpenCount(), 1U);
}

TEST(Counting, KeepsTheRecordUntilTheLastClose) {
    OpenLight light(ORVEX_TYPE_TAMAR);
    light.open();
    light.device.closeConnection(false);
    EXPECT_EQ(light.record().iSerialNumber, 42);
}

TEST(Counting, LogsAsInformation) {
    OpenLight light(ORVEX_TYPE_ALDER);
    const LogCapture log(0x7D);
    light.open();
    light.device.closeConnection(false);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Counting, WrapsWhenAClosedDeviceIsClosed) {
    Light light(ORVEX_TYPE_ALDER);
    const LogCapture log;
    EXPECT_EQ(light.device.closeConnection(false), 0);
    EXPECT_EQ(light.device.getOpenCount(), 4294967295U);
    EXPECT_THAT(log.lines(), ElementsAre(stillOpen(light.device, "4294967295")));
    EXPECT_FALSE(light.device.isConnected());
}

TEST(Counting, LeavesTheLinkWhenItWraps) {
    OpenLight light(ORVEX_TYPE_SPRUCE);
    EXPECT_EQ(light.device.getOpenCount(), 0U);
    const LogCapture log;
    EXPECT_EQ(light.device.closeConnection(false), 0);
    EXPECT_THAT(log.lines(), ElementsAre(stillOpen(light.device, "4294967295")));
    EXPECT_TRUE(light.device.isConnected());
    EXPECT_THAT(light.takeRequests(), IsEmpty());
}

TEST(Counting, RefusesAnotherOpenWithoutALink) {
    Light light(ORVEX_TYPE_ALDER);
    light.device.closeConnection(false);
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light.device.openConnection(kBaud); }),
              Failure(0x80517006, "DriverException (0x80517006) "));
    EXPECT_EQ(failureOf([&] { light.device.openConnection(0); }).first, 0x80517006);
    EXPECT_THAT(log.lines(),
                ElementsAre("Error: LightDevice::openConnection: connection_count_:4294967295 but "
                            "link was disconnected",
                            "Error: LightDevice::openConnection: connection_count_:4294967295 but "
                            "link was disconnected"));
    EXPECT_EQ(light.device.getOpenCount(), 4294967295U);
    EXPECT_EQ(light.port.received(), "");
}

TEST(Counting, WrapsBackWithTheLink) {
    OpenLight light(ORVEX_TYPE_SPRUCE);
    light.device.closeConnection(false);
    const LogCapture log;
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 0U);
    EXPECT_THAT(log.lines(), ElementsAre(kOpenedAgain + "0"));
}

TEST(Counting, DoesNotNoticeAPortThatHasEnded) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.port.hangUp();
    EXPECT_TRUE(light.device.isConnected());
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 2U);
}

}  // namespace
