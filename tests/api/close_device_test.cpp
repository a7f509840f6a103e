// ORVEX_CloseDevice.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using orvex_test::handleText;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// 62 of them.
const std::string kSeparator = "--------------------------------------------------------------";

class CloseDevice : public orvex_test::AttachedDevices {
  protected:
    /// How many descriptors the process has on a device's terminal.
    static std::size_t descriptorsOn(const Device& device) {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            const auto target = std::filesystem::read_symlink(entry.path(), ignored);
            count += target == device.slavePath() ? 1 : 0;
        }
        return count;
    }
};

TEST_F(CloseDevice, LogsAnUnknownHandleAndReturns) {
    api().CloseDevice(0xABCDEF0012345678);
    EXPECT_THAT(log.take(),
                ElementsAre("ORVEX_CloseDevice: 0xabcdef0012345678",
                            "Warning: ORVEX_CloseDevice: Handle not found: 0xabcdef0012345678",
                            kSeparator));
}

TEST_F(CloseDevice, LogsHandleZero) {
    api().CloseDevice(0);
    EXPECT_THAT(log.take(),
                ElementsAre("ORVEX_CloseDevice: 0x0",
                            "Warning: ORVEX_CloseDevice: Handle not found: 0x0", kSeparator));
}

TEST_F(CloseDevice, LogsEachLineWithItsOwnBit) {
    log.restart(0x20);
    api().CloseDevice(0x1234);
    EXPECT_THAT(log.take(), ElementsAre("ORVEX_CloseDevice: 0x1234"));
    log.restart(0x10);
    api().CloseDevice(0x1234);
    EXPECT_THAT(log.take(), ElementsAre("Warning: ORVEX_CloseDevice: Handle not found: 0x1234"));
    log.restart(0x2);
    api().CloseDevice(0x1234);
    EXPECT_THAT(log.take(), ElementsAre(kSeparator));
    log.restart(0xFFFFEFCD);
    api().CloseDevice(0x1234);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(CloseDevice, LeavesADeviceAloneThatWasNotOpened) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    log.take();
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(), ElementsAre("ORVEX_CloseDevice: " + handleText(handle), kSeparator));
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(device.received(), "");
}

TEST_F(CloseDevice, DisconnectsALedSource) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("ORVEX_CloseDevice: " + handleText(handle),
                            "LightDevice::executeString: Disconnect", "Send [dc*] ->",
                            " <-Received [*]", "closeConnection: disconnected.", kSeparator));
    EXPECT_THAT(device.requests(), ElementsAre("dc\r"));
    EXPECT_EQ(openCount(handle), 0u);
}

TEST_F(CloseDevice, ClosesALampsShutter) {
    Device& device = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    device.change([](auto& state) { state.shutterOpen = true; });
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("ORVEX_CloseDevice: " + handleText(handle),
                            "LightDevice::executeString: CloseShutter", "Send [zz*] ->",
                            " <-Received [*]", "closeConnection: disconnected.", kSeparator));
    EXPECT_THAT(device.requests(), ElementsAre("zz\r"));
    EXPECT_FALSE(device.state().shutterOpen);
}

TEST_F(CloseDevice, TakesOneOpenBackOfSeveral) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    log.take();
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("ORVEX_CloseDevice: " + handleText(handle),
                            "Closed 1x device " + handleText(handle) + ". Is still open 2 time(s).",
                            kSeparator));
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("ORVEX_CloseDevice: " + handleText(handle),
                            "Closed 1x device " + handleText(handle) + ". Is still open 1 time(s).",
                            kSeparator));
    EXPECT_EQ(device.received(), "");
    api().CloseDevice(handle);
    EXPECT_THAT(device.requests(), ElementsAre("dc\r"));
    EXPECT_EQ(openCount(handle), 0u);
}

TEST_F(CloseDevice, DoesNothingMoreToAClosedDevice) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    api().CloseDevice(handle);
    api().CloseDevice(handle);
    EXPECT_THAT(device.requests(), ElementsAre("dc\r"));
    EXPECT_EQ(openCount(handle), 0u);
}

TEST_F(CloseDevice, ReleasesThePort) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::size_t before = descriptorsOn(device);
    const std::uint64_t handle = open();
    EXPECT_EQ(descriptorsOn(device), before + 1);
    api().CloseDevice(handle);
    EXPECT_EQ(descriptorsOn(device), before);
}

TEST_F(CloseDevice, KeepsTheDeviceRegistered) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    api().CloseDevice(handle);
    EXPECT_EQ(portOf(handle), "/dev/ttyACM0");
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_EQ(openCount(handle), 1u);
}

TEST_F(CloseDevice, ClearsTheStateRecord) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    api().CloseDevice(handle);
    OrvexStruct record;
    std::memset(&record, 0x55, sizeof record);
    EXPECT_EQ(api().GetOVStruct(handle, &record), 0u);
    EXPECT_EQ(record.iCapabilities, 0u);
    EXPECT_EQ(record.hDevice, 0u);
    EXPECT_STREQ(record.szModelName, "");
    EXPECT_EQ(record.iSize, 2008u);
    EXPECT_EQ(record.iUnitStatus, 0);
    EXPECT_EQ(record.iSerialNumber, 0);
    EXPECT_EQ(record.iExtendedChannels, 0);
}

TEST_F(CloseDevice, ReleasesADeviceThatRefusesToBeClosed) {
    Device& device = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onCommand("CloseShutter"), orvex::sim::errorReply());
    const std::size_t before = descriptorsOn(device);
    log.restart(0x3);
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("LightDevice::executeString: CloseShutter",
                            "Error: LightDevice::closeConnection: execute CloseShutter failed. "
                            "Exception: DriverException (0x80515003): LightDevice::executeString: "
                            "Command \"zz\" answered with error \"e\\r\"",
                            "closeConnection: disconnected.", kSeparator));
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(descriptorsOn(device), before - 1);
}

TEST_F(CloseDevice, ReleasesADeviceThatWasPulledOut) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.hangUp();
    log.restart(0x1);
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: SerialLink::purge: Error 5 from ioctl: Input/output error",
                            "Error: LightDevice::closeConnection: execute CloseShutter failed. "
                            "Exception: DriverException (0x80515003): SerialLink::purge: read.",
                            "Error: SerialLink::~SerialLink: set tty attributes. Error 5 from "
                            "tcsetattr: Input/output error"));
    EXPECT_EQ(openCount(handle), 0u);
}

TEST_F(CloseDevice, WrapsTheCountOfADeviceWhoseReadOutFailed) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    device.addFault(orvex::sim::onCommand("GetNameLED"), orvex::sim::errorReply());
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0x80515003u);
    device.clearRecord();
    log.restart(0x7F);
    api().CloseDevice(handle);
    EXPECT_THAT(log.take(), ElementsAre("ORVEX_CloseDevice: " + handleText(handle),
                                        "Closed 1x device " + handleText(handle) +
                                            ". Is still open 4294967295 time(s).",
                                        kSeparator));
    EXPECT_EQ(openCount(handle), 4294967295u);
    EXPECT_EQ(device.received(), "");
}

}  // namespace
