// A device's making and end.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/pseudo_terminal.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::kBaud;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::openDescriptors;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

void construct(OrvexType type, const std::string& port) {
    const LightDevice device(type, port);
}

termios settingsOf(const orvex::sim::SimulatedDevice& port) {
    const int terminal = ::open(port.slavePath().c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    EXPECT_EQ(::tcgetattr(terminal, &settings), 0);
    ::close(terminal);
    return settings;
}

TEST(Construction, LogsModelAndPort) {
    const LogCapture log;
    construct(ORVEX_TYPE_ALDER, "/dev/ttyACM0");
    construct(ORVEX_TYPE_WILLOW, "/dev/ttyUSB12");
    EXPECT_THAT(log.lines(),
                ElementsAre("LightDevice::LightDevice: new LightDevice <0> @ /dev/ttyACM0",
                            "LightDevice::LightDevice: new LightDevice <9> @ /dev/ttyUSB12"));
}

TEST(Construction, LogsAsInformation) {
    const LogCapture log(0x7D);
    construct(ORVEX_TYPE_ALDER, "/dev/ttyACM0");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Construction, MakesAClosedDevice) {
    LightDevice device(ORVEX_TYPE_TAMAR, "/dev/ttyACM3");
    EXPECT_EQ(device.getType(), 8U);
    EXPECT_EQ(device.getComPort(), "/dev/ttyACM3");
    EXPECT_EQ(device.getOpenCount(), 0U);
    EXPECT_FALSE(device.isConnected());
    EXPECT_FALSE(device.getLampState());
    EXPECT_EQ(device.hDev(), static_cast<void*>(&device));
}

TEST(Construction, SetsTheSizeOfAnEmptyRecord) {
    const Light light(ORVEX_TYPE_TAMAR);
    OrvexStruct expected{};
    expected.iSize = 2008;
    const OrvexStruct record = light.record();
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
}

TEST(Construction, SendsNothing) {
    const Light light(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(openDescriptors(light.port), 1U);
    EXPECT_EQ(light.port.received(), "");
}

TEST(Construction, TakesAnyPortThatContainsTty) {
    for (const char* port : {"tty", "/dev/ttyS0", "xttyx", "a tty"}) {
        EXPECT_EQ(failureOf([&] { construct(ORVEX_TYPE_ALDER, port); }), Failure()) << port;
    }
}

TEST(Construction, RefusesAnotherPort) {
    for (const char* port : {"", "t", "tt", "/dev/pts/7", "/dev/TTYS0", "COM3", "t ty"}) {
        const LogCapture log;
        EXPECT_EQ(failureOf([&] { construct(ORVEX_TYPE_ALDER, port); }),
                  Failure(0xA0515001, "DriverException (0xa0515001) "))
            << port;
        EXPECT_THAT(
            log.lines(),
            ElementsAre(
                "Error: LightDevice::openConnection: wrong pattern found in parameter sz_port"));
    }
}

TEST(Construction, RefusesAnUnknownModel) {
    for (const OrvexType type : {10U, 65535U, 4294967295U}) {
        const LogCapture log;
        EXPECT_EQ(failureOf([&] { construct(type, "/dev/ttyACM0"); }),
                  Failure(0xA0515001,
                          "DriverException (0xa0515001): Not implemented/unknown device type"))
            << type;
        EXPECT_THAT(log.lines(), IsEmpty());
    }
}

TEST(Construction, LooksAtThePortBeforeTheModel) {
    const LogCapture log;
    EXPECT_EQ(failureOf([] { construct(10, "/dev/pts/7"); }),
              Failure(0xA0515001, "DriverException (0xa0515001) "));
    EXPECT_THAT(
        log.lines(),
        ElementsAre(
            "Error: LightDevice::openConnection: wrong pattern found in parameter sz_port"));
}

class Destruction : public testing::Test {
  protected:
    Light light_{ORVEX_TYPE_TAMAR};
    std::unique_ptr<LightDevice> device_ =
        std::make_unique<LightDevice>(ORVEX_TYPE_TAMAR, light_.port.path());
};

TEST_F(Destruction, ReleasesThePortAndSendsNothing) {
    device_->openConnection(kBaud);
    device_->openConnection(kBaud);
    ASSERT_EQ(openDescriptors(light_.port), 2U);
    light_.port.clearRecord();
    const LogCapture log;
    device_.reset();
    EXPECT_EQ(openDescriptors(light_.port), 1U);
    EXPECT_THAT(log.lines(), IsEmpty());
    EXPECT_EQ(light_.port.received(), "");
}

TEST_F(Destruction, ReleasesThePortOfAHalfOpenDevice) {
    light_.refuse("GetNameLED");
    EXPECT_NE(failureOf([&] { device_->openConnection(kBaud); }), Failure());
    ASSERT_EQ(openDescriptors(light_.port), 2U);
    device_.reset();
    EXPECT_EQ(openDescriptors(light_.port), 1U);
}

TEST_F(Destruction, RestoresThePortsSettings) {
    const termios before = settingsOf(light_.port);
    device_->openConnection(115200);
    ASSERT_FALSE(orvex_test::sameSettings(settingsOf(light_.port), before));
    device_.reset();
    EXPECT_TRUE(orvex_test::sameSettings(settingsOf(light_.port), before));
}

TEST_F(Destruction, OfAClosedDeviceIsSilent) {
    const LogCapture log;
    device_.reset();
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Destruction, OutlivesAPortThatHasEnded) {
    device_->openConnection(kBaud);
    light_.port.hangUp();
    const LogCapture log;
    device_.reset();
    EXPECT_THAT(log.lines(),
                ElementsAre("Error: SerialLink::disconnect: set tty attributes. Error 5 from "
                            "tcsetattr: Input/output error"));
}

}  // namespace
