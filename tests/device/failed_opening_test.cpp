// Opens that fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "sim/fault.h"
#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/temporary_directory.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::hasLink;
using orvex_test::kBaud;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::openDescriptors;
using orvex_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string refused(const std::string& request) {
    return "DriverException (0x80515003): LightDevice::executeString: Command \"" + request +
           "\" answered with error \"e\\r\"";
}

const Failure kNoByte{0xA0515019,
                      "DriverException (0xa0515019): SerialLink::recvChar: Wrong recv length: 0"};

TEST(FailedOpening, GivesNoHandleWithoutAPort) {
    Light light(ORVEX_TYPE_ALDER);
    light.port.hangUp();
    const std::string path = light.port.path();
    const LogCapture log;
    EXPECT_EQ(light.device.openConnection(kBaud), nullptr);
    EXPECT_THAT(log.lines(),
                ElementsAre("SerialLink::connect: port: " + path,
                            "Error: SerialLink::connect: open port: " + path,
                            "Error: SerialLink::connect: Error 2 from open: No such file or "
                            "directory",
                            "Error: LightDevice::openConnection: connect() failed: 2689683463"));
    EXPECT_FALSE(hasLink(light.device));
    EXPECT_FALSE(light.device.isConnected());
    EXPECT_EQ(light.device.getOpenCount(), 0U);
}

TEST(FailedOpening, SucceedsLaterWithThePort) {
    Light light(ORVEX_TYPE_ALDER);
    light.port.hangUp();
    EXPECT_EQ(light.device.openConnection(kBaud), nullptr);
    light.port.plugIn();
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 1U);
}

TEST(FailedOpening, GivesNoHandleForWhatIsNoTerminal) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("tty");
    std::ofstream{path};
    LightDevice device(ORVEX_TYPE_ALDER, path);
    const LogCapture log;
    EXPECT_EQ(device.openConnection(kBaud), nullptr);
    EXPECT_FALSE(device.isConnected());
    EXPECT_THAT(log.lines(),
                ElementsAre("SerialLink::connect: port: " + path,
                            "Error: SerialLink::connect: Error 25 from tcgetattr: Inappropriate "
                            "ioctl for device",
                            "Error: LightDevice::openConnection: connect() failed: 2152812547",
                            "Error: SerialLink::~SerialLink: set tty attributes. Error 25 from "
                            "tcsetattr: Inappropriate ioctl for device"));
}

TEST(FailedConnect, IsPassedOnAfterADisconnect) {
    Light light(ORVEX_TYPE_TAMAR);
    light.refuse("Connect");
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light.open(); }), Failure(0x80515003, refused("co")));
    EXPECT_THAT(log.lines(), ElementsAre("SerialLink::connect: port: " + light.port.path(),
                                         "LightDevice::openConnection: connect() succeed.",
                                         "LightDevice::executeString: Connect", "Send [co*] ->",
                                         "Error: LightDevice::openConnection: " + refused("co")));
    EXPECT_EQ(light.port.received(), "co\r");
}

TEST(FailedConnect, LeavesTheDeviceClosed) {
    Light light(ORVEX_TYPE_TAMAR);
    light.refuse("Connect");
    EXPECT_NE(failureOf([&] { light.open(); }), Failure());
    EXPECT_FALSE(hasLink(light.device));
    EXPECT_FALSE(light.device.isConnected());
    EXPECT_EQ(light.device.getOpenCount(), 0U);
    EXPECT_EQ(openDescriptors(light.port), 1U);
    EXPECT_EQ(failureOf([&] { light.exchange("GI"); }).first, 0x80517006);
}

TEST(FailedConnect, CanBeTriedAgain) {
    Light light(ORVEX_TYPE_ALDER);
    light.port.addFault(orvex::sim::onCommand("Connect").nth(1), orvex::sim::errorReply());
    EXPECT_NE(failureOf([&] { light.open(); }), Failure());
    EXPECT_EQ(failureOf([&] { light.open(); }), Failure());
    EXPECT_EQ(light.port.received(), "tt\rtt\ruu\rii\r");
}

TEST(FailedConnect, TellsOfASilentDevice) {
    Light light(ORVEX_TYPE_ALDER);
    light.port.addFault(orvex::sim::onCommand("Connect"), orvex::sim::silence());
    const LogCapture log(0x1);
    EXPECT_EQ(failureOf([&] { light.open(); }), kNoByte);
    EXPECT_THAT(log.lines(), ElementsAre("Error: SerialLink::recvArray: read returned with EOF (0)",
                                         "Error: SerialLink::recvArray: read returned with EOF (0)",
                                         "Error: SerialLink::recvArray: read returned with EOF (0)",
                                         "Error: LightDevice::openConnection: " + kNoByte.second));
    EXPECT_EQ(light.port.received(), "tt\r");
}

class FailedReadOut : public testing::TestWithParam<const char*> {};

TEST_P(FailedReadOut, LeavesTheDeviceHalfOpen) {
    Light light(ORVEX_TYPE_TAMAR);
    light.refuse(GetParam());
    EXPECT_EQ(failureOf([&] { light.open(); }).first, 0x80515003);
    EXPECT_EQ(light.device.getOpenCount(), 0U);
    EXPECT_TRUE(light.device.isConnected());
    EXPECT_EQ(light.exchange("GI"), "ok\r");
}

TEST_P(FailedReadOut, StartsOverWithTheNextOpen) {
    Light light(ORVEX_TYPE_TAMAR);
    light.port.addFault(orvex::sim::onCommand(GetParam()).nth(1), orvex::sim::errorReply());
    EXPECT_NE(failureOf([&] { light.open(); }), Failure());
    light.port.clearRecord();
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 1U);
    EXPECT_EQ(light.port.received(), "co\rlw?\rus?\rni?\rip?\rgt?\rln?\rsn?\r");
    EXPECT_EQ(openDescriptors(light.port), 2U);
}

INSTANTIATE_TEST_SUITE_P(Commands, FailedReadOut,
                         testing::Values("GetWaveLengthLED", "GetUnitStatus",
                                         "MinimumIntensityPercentage", "GetIntensity",
                                         "GetTemperature", "GetNameLED", "GetUnitSerialNumber"),
                         [](const auto& test) { return std::string(test.param); });

TEST(FailedExtension, LeavesTheDeviceHalfOpen) {
    Light light(ORVEX_TYPE_BIRCH);
    light.refuse("EnableExtendedCommands");
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light.open(); }), Failure(0x80515003, refused("jj")));
    EXPECT_THAT(log.lines(),
                ElementsAre("SerialLink::connect: port: " + light.port.path(),
                            "LightDevice::openConnection: connect() succeed.",
                            "LightDevice::executeString: Connect",  //
                            "Send [tt*] ->", " <-Received [ok*]",
                            "LightDevice::executeString: EnableExtendedCommands", "Send [jj*] ->"));
    EXPECT_TRUE(light.device.isConnected());
    EXPECT_EQ(light.device.getOpenCount(), 0U);
}

class HalfOpen : public testing::TestWithParam<OrvexType> {
  protected:
    HalfOpen() {
        EXPECT_EQ(failureOf([&] { light_.open(); }).first, 0xA0515013);
    }

    Light light_{GetParam()};
};

TEST_P(HalfOpen, TakesCommands) {
    EXPECT_TRUE(light_.device.isConnected());
    EXPECT_EQ(light_.device.getOpenCount(), 0U);
    EXPECT_EQ(light_.command("GetSoftwareVersion"), "ok\r");
    EXPECT_TRUE(light_.device.ping());
}

TEST_P(HalfOpen, IsOpenedFromTheStart) {
    const std::string first = light_.port.received();
    light_.port.clearRecord();
    EXPECT_EQ(failureOf([&] { light_.open(); }).first, 0xA0515013);
    EXPECT_EQ(light_.port.received(), first);
    EXPECT_EQ(openDescriptors(light_.port), 2U);
}

TEST_P(HalfOpen, KeepsCheckingTheBaudRate) {
    EXPECT_EQ(failureOf([&] { light_.device.openConnection(9599); }).first, 0xA0515001);
    EXPECT_TRUE(light_.device.isConnected());
}

TEST_P(HalfOpen, LosesItsLinkWhenThePortCannotBeOpenedAgain) {
    light_.port.hangUp();
    EXPECT_EQ(light_.device.openConnection(kBaud), nullptr);
    EXPECT_FALSE(hasLink(light_.device));
    EXPECT_FALSE(light_.device.isConnected());
}

TEST_P(HalfOpen, StaysConnectedWhenClosed) {
    light_.port.clearRecord();
    EXPECT_EQ(light_.device.closeConnection(false), 0);
    EXPECT_EQ(light_.device.getOpenCount(), 4294967295U);
    EXPECT_TRUE(light_.device.isConnected());
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
    EXPECT_EQ(light_.exchange("GI"), "ok\r");
}

INSTANTIATE_TEST_SUITE_P(Models, HalfOpen, testing::Values(ORVEX_TYPE_ROWAN, ORVEX_TYPE_SPRUCE),
                         [](const auto& test) { return gl_type_names.at(test.param); });

}  // namespace
