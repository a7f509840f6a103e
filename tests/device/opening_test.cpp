// A device's first open.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <map>
#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::kBaud;
using orvex_test::Light;
using orvex_test::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The bytes that a model is sent when it is opened.
std::string sentWhenOpened(OrvexType model) {
    Light light(model);
    light.open();
    return light.port.received();
}

speed_t speedOf(const orvex::sim::SimulatedDevice& port) {
    const int terminal = ::open(port.slavePath().c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    EXPECT_EQ(::tcgetattr(terminal, &settings), 0);
    ::close(terminal);
    EXPECT_EQ(::cfgetispeed(&settings), ::cfgetospeed(&settings));
    return ::cfgetospeed(&settings);
}

TEST(Opening, ReadsABasicLampOut) {
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_ALDER), "tt\ruu\rii\r");
}

TEST(Opening, ReadsAnExtendedLampOut) {
    const std::string expected = "tt\rjj\ruu\rni\rdd\rgt\r";
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_BIRCH), expected);
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_CEDAR), expected);
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_HAZEL), expected);
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_LARCH), expected);
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_MAPLE), expected);
}

TEST(Opening, ReadsALedModelOut) {
    const std::string expected = "co\rlw?\rus?\rni?\rip?\rgt?\rln?\rsn?\r";
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_TAMAR), expected);
    EXPECT_EQ(sentWhenOpened(ORVEX_TYPE_WILLOW), expected);
}

TEST(Opening, EndsEarlyForRowan) {
    Light light(ORVEX_TYPE_ROWAN);
    EXPECT_EQ(failureOf([&] { light.open(); }),
              Failure(0xA0515013,
                      "DriverException (0xa0515013): Command <GetWaveLengthLED> is not supported "
                      "for type 6"));
    EXPECT_EQ(light.port.received(), "tt\rjj\r");
}

TEST(Opening, EndsEarlyForSpruce) {
    Light light(ORVEX_TYPE_SPRUCE);
    EXPECT_EQ(failureOf([&] { light.open(); }),
              Failure(0xA0515013,
                      "DriverException (0xa0515013): Command <MinimumIntensityPercentage> is not "
                      "supported for type 7"));
    EXPECT_EQ(light.port.received(), "co\rlw?\rus?\r");
}

TEST(Opening, ReturnsTheHandle) {
    Light light(ORVEX_TYPE_ALDER);
    EXPECT_EQ(light.device.openConnection(kBaud), light.device.hDev());
    EXPECT_EQ(light.device.getOpenCount(), 1U);
    EXPECT_TRUE(light.device.isConnected());
}

TEST(Opening, LogsABasicLampsReadOut) {
    Light light(ORVEX_TYPE_ALDER);
    light.port.replyWith("Connect", "Orvex\r");
    light.port.replyWith("GetUnitStatus", "3\r");
    light.port.replyWith("GetIntensityH4", "25\r");
    const LogCapture log;
    light.open();
    EXPECT_THAT(log.lines(),
                ElementsAre("SerialLink::connect: port: " + light.port.path(),
                            "LightDevice::openConnection: connect() succeed.",
                            "LightDevice::executeString: Connect",  //
                            "Send [tt*] ->", " <-Received [Orvex*]",
                            "LightDevice:initDevice: Orvex Alder has 1 channels: [500]",
                            "LightDevice::executeString: GetUnitStatus",  //
                            "Send [uu*] ->", " <-Received [3*]",
                            "LightDevice::executeString: GetIntensityH4",  //
                            "Send [ii*] ->", " <-Received [25*]",          //
                            "initDevice: succeed.", "openConnection: succeed."));
}

TEST(Opening, LogsAnExtendedLampsReadOut) {
    Light light(ORVEX_TYPE_CEDAR);
    light.port.replyWith("GetUnitStatus", "3\r");
    light.port.replyWith("MinimumIntensityPercentage", "5\r");
    light.port.replyWith("GetIntensity", "25\r");
    light.port.replyWith("GetTemperature", "41\r");
    const LogCapture log;
    light.open();
    EXPECT_THAT(log.lines(),
                ElementsAre("SerialLink::connect: port: " + light.port.path(),
                            "LightDevice::openConnection: connect() succeed.",
                            "LightDevice::executeString: Connect",  //
                            "Send [tt*] ->", " <-Received [ok*]",
                            "LightDevice::executeString: EnableExtendedCommands",  //
                            "Send [jj*] ->", " <-Received [ok*]",
                            "LightDevice:initDevice: Orvex Cedar has 1 channels: [500]",
                            "LightDevice::executeString: GetUnitStatus",  //
                            "Send [uu*] ->", " <-Received [3*]",
                            "LightDevice::executeString: MinimumIntensityPercentage",
                            "Send [ni*] ->", " <-Received [5*]",
                            "LightDevice::executeString: GetIntensity",  //
                            "Send [dd*] ->", " <-Received [25*]",
                            "LightDevice::executeString: GetTemperature",  //
                            "Send [gt*] ->", " <-Received [41*]",          //
                            "initDevice: succeed.", "openConnection: succeed."));
}

TEST(Opening, LogsALedModelsReadOut) {
    Light light(ORVEX_TYPE_TAMAR);
    light.port.replyWith("GetWaveLengthLED", "365,999,470,999\r");
    light.port.replyWith("GetUnitStatus", "1,0,1,0\r");
    const LogCapture log;
    light.open();
    EXPECT_THAT(
        log.lines(),
        ElementsAre("SerialLink::connect: port: " + light.port.path(),
                    "LightDevice::openConnection: connect() succeed.",
                    "LightDevice::executeString: Connect",  //
                    "Send [co*] ->", " <-Received [ok*]",
                    "LightDevice::executeString: GetWaveLengthLED",  //
                    "Send [lw?*] ->", " <-Received [365,999,470,999*]",
                    "LightDevice:initDevice: Orvex Tamar has 4 channels: [365, 999, 470, 999]",
                    "LightDevice::executeString: GetUnitStatus",  //
                    "Send [us?*] ->", " <-Received [1,0,1,0*]",
                    "LightDevice:initDevice: LED states: [1, 0, 1, 0]",
                    "LightDevice::executeString: MinimumIntensityPercentage",  //
                    "Send [ni?*] ->", " <-Received [50,60,70,80*]",
                    "LightDevice::executeString: GetIntensity",  //
                    "Send [ip?*] ->", " <-Received [100,200,300,400*]",
                    "LightDevice::executeString: GetTemperature",  //
                    "Send [gt?*] ->", " <-Received [30,31,32,33*]",
                    "LightDevice::executeString: GetNameLED",  //
                    "Send [ln?*] ->", " <-Received [UV,VIOLET,BLUE,GREEN*]",
                    "LightDevice::executeString: GetUnitSerialNumber",  //
                    "Send [sn?*] ->", " <-Received [SN-0042*]",
                    "Full SerialNumber is: SN-0042\r",  //
                    "initDevice: succeed.", "openConnection: succeed."));
}

TEST(Opening, LogsItsLinesInTheirClasses) {
    Light light(ORVEX_TYPE_ALDER);
    LogCapture log(0x20);
    light.open();
    EXPECT_THAT(log.take(), ElementsAre("initDevice: succeed.", "openConnection: succeed."));
    ORVEX_SetLogBits(0x2);
    light.device.closeConnection(false);
    light.open();
    EXPECT_THAT(
        log.lines(),
        ElementsAre("LightDevice::executeString: CloseShutter", "closeConnection: disconnected.",
                    "LightDevice::openConnection: connect() succeed.",
                    "LightDevice::executeString: Connect",
                    "LightDevice:initDevice: Orvex Alder has 1 channels: [500]",
                    "LightDevice::executeString: GetUnitStatus",
                    "LightDevice::executeString: GetIntensityH4"));
}

TEST(Opening, LogsTheLineOfALedReadOutInItsClass) {
    Light light(ORVEX_TYPE_WILLOW);
    const LogCapture log(0x2);
    light.device.openConnection(kBaud);
    const auto lines = log.lines();
    EXPECT_THAT(lines, testing::Contains("LightDevice:initDevice: LED states: [0, 0, 0, 0]"));
    EXPECT_THAT(lines, testing::Contains("Full SerialNumber is: SN-0042\r"));
}

TEST(Opening, DoesNotLookAtTheRepliesToItsFirstRequests) {
    Light light(ORVEX_TYPE_BIRCH);
    light.port.replyWith("Connect", "\r");
    light.port.replyWith("EnableExtendedCommands", "E\r");
    EXPECT_EQ(failureOf([&] { light.open(); }), Failure());
    EXPECT_EQ(light.device.getOpenCount(), 1U);
}

TEST(Opening, RefusesABaudRateBelow9600) {
    for (const unsigned baud : {9599U, 4800U, 0U}) {
        Light light(ORVEX_TYPE_ALDER);
        const LogCapture log;
        EXPECT_EQ(failureOf([&] { light.device.openConnection(baud); }),
                  Failure(0xA0515001, "DriverException (0xa0515001) "));
        EXPECT_THAT(log.lines(),
                    ElementsAre("Error: LightDevice::openConnection: Wrong baudrate: " +
                                std::to_string(baud)));
        EXPECT_FALSE(light.device.isConnected());
        EXPECT_EQ(light.device.getOpenCount(), 0U);
        EXPECT_THAT(light.takeRequests(), IsEmpty());
    }
}

TEST(Opening, TakesAnyBaudRateFrom9600On) {
    const std::map<unsigned, speed_t> speeds = {
        {9600, B9600}, {9601, B9600}, {115200, B115200}, {4294967295, B4000000}};
    for (const auto& speed : speeds) {
        Light light(ORVEX_TYPE_ALDER);
        EXPECT_EQ(failureOf([&] { light.device.openConnection(speed.first); }), Failure());
        EXPECT_EQ(speedOf(light.port), speed.second) << speed.first;
    }
}

}  // namespace
