// ORVEX_OpenDevice with a device that is found but cannot be opened.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <termios.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenFailures : public orvex_test::AttachedDevices {
  protected:
    OpenFailures() { log.restart(0x1); }

    /// The status of opening whatever is attached; the handle stays 0.
    static std::uint32_t statusAt(std::uint32_t baudrate) {
        std::uint64_t handle = 0;
        const std::uint32_t status = api().OpenDevice(&handle, 65535, nullptr, baudrate);
        EXPECT_EQ(handle, 0u);
        return status;
    }

    static std::uint64_t openedAt(std::uint32_t baudrate) {
        std::uint64_t handle = 0;
        EXPECT_EQ(api().OpenDevice(&handle, 65535, nullptr, baudrate), 0u);
        return handle;
    }

    static speed_t speedOf(const Device& device) {
        const int terminal = ::open(device.slavePath().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        EXPECT_EQ(::tcgetattr(terminal, &settings), 0);
        ::close(terminal);
        return ::cfgetospeed(&settings);
    }
};

TEST_F(OpenFailures, ABaudrateBelow9600IsRefused) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(statusAt(9599), 0xA0515001u);
    EXPECT_THAT(log.take(), ElementsAre("Error: LightDevice::openConnection: Wrong baudrate: 9599",
                                        "Error: ORVEX_OpenDevice: failed. Exception: "
                                        "DriverException (0xa0515001) "));
    EXPECT_EQ(statusAt(0), 0xA0515001u);
    EXPECT_EQ(device.received(), "");
}

TEST_F(OpenFailures, TheBaudrateIsPassedOn) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    openedAt(19200);
    EXPECT_EQ(speedOf(device), speed_t{B19200});
}

TEST_F(OpenFailures, ABaudrateOf9600IsEnough) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    openedAt(9600);
    EXPECT_EQ(speedOf(device), speed_t{B9600});
}

TEST_F(OpenFailures, TheBaudrateOfALaterOpenDoesNotMatter) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t first = openedAt(19200);
    std::uint64_t again = 0;
    EXPECT_EQ(api().OpenDevice(&again, 8, nullptr, 1), 0u);
    EXPECT_EQ(again, first);
    EXPECT_EQ(openCount(first), 2u);
    EXPECT_EQ(speedOf(device), speed_t{B19200});
}

TEST_F(OpenFailures, APortThatCannotBeOpenedIsNoDevice) {
    attachDead({});
    EXPECT_EQ(statusAt(9600), 0x80515001u);
    EXPECT_THAT(
        log.take(),
        ElementsAre("Error: SerialLink::connect: open port: /dev/ttyACM0",
                    "Error: SerialLink::connect: Error 2 from open: No such file or directory",
                    "Error: LightDevice::openConnection: connect() failed: 2689683463"));
    EXPECT_EQ(scan().size(), 1u);
}

TEST_F(OpenFailures, AnErrorReplyToTheFirstRequestEndsTheConnection) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    device.addFault(orvex::sim::onCommand("Connect").nth(1), orvex::sim::errorReply());
    EXPECT_EQ(statusAt(9600), 0x80515003u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: LightDevice::openConnection: DriverException (0x80515003): "
                            "LightDevice::executeString: Command \"co\" answered with error "
                            "\"e\\r\"",
                            "Error: ORVEX_OpenDevice: failed. Exception: "
                            "DriverException (0x80515003): LightDevice::executeString: Command "
                            "\"co\" answered with error \"e\\r\""));
    EXPECT_THAT(device.requests(), ElementsAre("co\r"));
    const std::uint64_t handle = handleAt("/dev/ttyACM0");
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(openedAt(9600), handle);
    EXPECT_EQ(openCount(handle), 1u);
}

TEST_F(OpenFailures, ASilentDeviceEndsWithoutReply) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    device.addFault(orvex::sim::onAny(), orvex::sim::silence());
    EXPECT_EQ(statusAt(9600), 0xA0515019u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: SerialLink::recvArray: read returned with EOF (0)",
                            "Error: SerialLink::recvArray: read returned with EOF (0)",
                            "Error: SerialLink::recvArray: read returned with EOF (0)",
                            "Error: LightDevice::openConnection: DriverException (0xa0515019): "
                            "SerialLink::recvChar: Wrong recv length: 0",
                            "Error: ORVEX_OpenDevice: failed. Exception: "
                            "DriverException (0xa0515019): "
                            "SerialLink::recvChar: Wrong recv length: 0"));
}

TEST_F(OpenFailures, AFailingReadOutLeavesTheDeviceClosedButInUse) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    device.addFault(orvex::sim::onCommand("GetTemperature").nth(1), orvex::sim::errorReply());
    EXPECT_EQ(statusAt(9600), 0x80515003u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDevice: failed. Exception: "
                            "DriverException (0x80515003): LightDevice::executeString: Command "
                            "\"gt?\" answered with error \"e\\r\""));
    const std::uint64_t handle = handleAt("/dev/ttyACM0");
    EXPECT_EQ(openCount(handle), 0u);
    char reply[16];
    EXPECT_EQ(api().ExecuteCommand(handle, "GetSoftwareVersion", reply, sizeof reply), 0u);
    EXPECT_STREQ(reply, "1.4.2\r");
    EXPECT_EQ(openedAt(9600), handle);
    EXPECT_EQ(openCount(handle), 1u);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(OpenFailures, MoreThanSixteenPositionsAreTooMany) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    device.replyWith("GetWaveLengthLED", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17\r");
    EXPECT_EQ(statusAt(9600), 0x80515020u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_OpenDevice: failed. Exception: "
                                        "DriverException (0x80515020): "
                                        "ORVEX_MAX_CHANNEL is exceeded!"));
}

}  // namespace
