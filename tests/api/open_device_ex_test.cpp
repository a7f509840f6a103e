// ORVEX_OpenDeviceEx.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using orvex_test::handleText;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using OpenDeviceEx = orvex_test::AttachedDevices;

TEST_F(OpenDeviceEx, RefusesHandleZero) {
    EXPECT_EQ(api().OpenDeviceEx(0), 0xA0515002u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_OpenDeviceEx: handle was nullptr"));
}

TEST_F(OpenDeviceEx, RefusesAnUnknownHandleWithoutLookingForDevices) {
    attach(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(api().OpenDeviceEx(0x1234), 0xA0515002u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDeviceEx: handle for device is not found."));
}

TEST_F(OpenDeviceEx, OpensALedSource) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(openCount(handle), 0u);
    log.restart(0x20);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_THAT(log.take(), ElementsAre("initDevice: succeed.", "openConnection: succeed.",
                                        "openDeviceEx: Orvex [Type: 8] @ \"/dev/ttyACM0\" assigned "
                                        "to hDev: " +
                                            handleText(handle)));
    EXPECT_EQ(openCount(handle), 1u);
}

TEST_F(OpenDeviceEx, OpensALamp) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = scan().at(0);
    log.restart(0x20);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_THAT(log.take(), ElementsAre("initDevice: succeed.", "openConnection: succeed.",
                                        "openDeviceEx: Orvex [Type: 2] @ \"/dev/ttyACM0\" assigned "
                                        "to hDev: " +
                                            handleText(handle)));
}

TEST_F(OpenDeviceEx, OpensAtNineThousandSixHundredBaud) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    open();
    const int terminal = ::open(device.slavePath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    EXPECT_EQ(::tcgetattr(terminal, &settings), 0);
    ::close(terminal);
    EXPECT_EQ(::cfgetospeed(&settings), speed_t{B9600});
    EXPECT_EQ(::cfgetispeed(&settings), speed_t{B9600});
}

TEST_F(OpenDeviceEx, CountsASecondOpenAndSendsNothing) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_THAT(
        log.take(),
        ElementsAre("LightDevice::openConnection: LightDevice openend again. connection_count_: 2",
                    "openDeviceEx: Orvex [Type: 8] @ \"/dev/ttyACM0\" assigned to hDev: " +
                        handleText(handle)));
    EXPECT_EQ(openCount(handle), 2u);
    EXPECT_EQ(device.received(), "");
}

TEST_F(OpenDeviceEx, OpensEveryHandleOfAScan) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_CEDAR);
    for (const std::uint64_t handle : scan()) {
        EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
        EXPECT_EQ(openCount(handle), 1u);
    }
}

TEST_F(OpenDeviceEx, IsNoDeviceWhenThePortCannotBeOpened) {
    attachDead({});
    const std::uint64_t handle = scan().at(0);
    log.restart(0x7F);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0x80515001u);
    EXPECT_THAT(
        log.take(),
        ElementsAre("SerialLink::connect: port: /dev/ttyACM0",
                    "Error: SerialLink::connect: open port: /dev/ttyACM0",
                    "Error: SerialLink::connect: Error 2 from open: No such file or directory",
                    "Error: LightDevice::openConnection: connect() failed: 2689683463",
                    "Error: ORVEX_OpenDeviceEx: handle does not match found device."));
    EXPECT_EQ(openCount(handle), 0u);
}

TEST_F(OpenDeviceEx, ReturnsTheCodeOfAFailureAndKeepsTheDevice) {
    Device& device = attach(ORVEX_TYPE_CEDAR);
    device.addFault(orvex::sim::onCommand("Connect").nth(1), orvex::sim::errorReply());
    const std::uint64_t handle = scan().at(0);
    log.restart(0x1);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0x80515003u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: LightDevice::openConnection: DriverException (0x80515003): "
                            "LightDevice::executeString: Command \"tt\" answered with error "
                            "\"e\\r\"",
                            "Error: ORVEX_OpenDeviceEx: failed. Exception: "
                            "DriverException (0x80515003): LightDevice::executeString: Command "
                            "\"tt\" answered with error \"e\\r\""));
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_EQ(openCount(handle), 1u);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(OpenDeviceEx, RefusesTheHandleOfADeviceThatIsGone) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    unplug("/dev/ttyACM0");
    EXPECT_THAT(scan(), IsEmpty());
    log.restart(0x7F);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0xA0515002u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDeviceEx: handle for device is not found."));
}

}  // namespace
