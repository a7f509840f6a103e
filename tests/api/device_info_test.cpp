// ORVEX_GetDeviceInfo.
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <string>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using ::testing::IsEmpty;

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;

class DeviceInfo : public orvex_test::AttachedDevices {
  protected:
    DeviceInfo() { log.restart(0xFFFFFFFF); }

    /// The status of asking for the port alone. What is behind the buffer must stay as it is.
    std::uint32_t askPort(std::uint64_t handle, std::uint32_t size) {
        buffer.fill('#');
        return api().GetDeviceInfo(handle, nullptr, buffer.data(), size, nullptr);
    }

    [[nodiscard]] std::string written() const { return {buffer.data(), buffer.size()}; }

    std::array<char, 32> buffer{};
};

TEST_F(DeviceInfo, RefusesAnUnknownHandleAndWritesNothing) {
    std::uint32_t type = kUntouched;
    std::uint32_t count = kUntouched;
    for (const std::uint64_t handle : {std::uint64_t{0}, std::uint64_t{0x1234}}) {
        buffer.fill('#');
        EXPECT_EQ(api().GetDeviceInfo(handle, &type, buffer.data(), 32, &count), 0xA0515007u);
        EXPECT_EQ(written(), std::string(32, '#'));
    }
    EXPECT_EQ(type, kUntouched);
    EXPECT_EQ(count, kUntouched);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(DeviceInfo, SkipsNullPointers) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    log.take();
    EXPECT_EQ(api().GetDeviceInfo(handle, nullptr, nullptr, 0, nullptr), 0u);
    std::uint32_t type = kUntouched;
    EXPECT_EQ(api().GetDeviceInfo(handle, &type, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(type, 8u);
    std::uint32_t count = kUntouched;
    EXPECT_EQ(api().GetDeviceInfo(handle, nullptr, nullptr, 0, &count), 0u);
    EXPECT_EQ(count, 0u);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(DeviceInfo, TellsTheModelOfEachDevice) {
    attach(ORVEX_TYPE_CEDAR);
    attach(ORVEX_TYPE_TAMAR);
    std::uint32_t type = kUntouched;
    EXPECT_EQ(api().GetDeviceInfo(handleAt("/dev/ttyACM0"), &type, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(type, 2u);
    EXPECT_EQ(api().GetDeviceInfo(handleAt("/dev/ttyACM1"), &type, nullptr, 0, nullptr), 0u);
    EXPECT_EQ(type, 8u);
}

TEST_F(DeviceInfo, NeedsTwoBytesMoreThanThePathHas) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(askPort(handle, 13), 0xA0515006u);
    EXPECT_EQ(written(), std::string(32, '#'));
    EXPECT_EQ(askPort(handle, 14), 0u);
    EXPECT_EQ(written(), std::string("/dev/ttyACM0\0", 13) + std::string(19, '#'));
}

TEST_F(DeviceInfo, RefusesEverySmallerBuffer) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    for (std::uint32_t size = 0; size < 14; ++size) {
        EXPECT_EQ(askPort(handle, size), 0xA0515006u) << size;
        EXPECT_EQ(written(), std::string(32, '#')) << size;
    }
}

TEST_F(DeviceInfo, WritesNothingBehindThePathsTerminator) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(askPort(handle, 32), 0u);
    EXPECT_EQ(written(), std::string("/dev/ttyACM0\0", 13) + std::string(19, '#'));
    EXPECT_EQ(askPort(handle, 0xFFFFFFFF), 0u);
    EXPECT_EQ(written(), std::string("/dev/ttyACM0\0", 13) + std::string(19, '#'));
}

TEST_F(DeviceInfo, GoesByThePathsOwnLength) {
    Identity identity = orvex::sim::usbIdentityOf(ORVEX_TYPE_TAMAR);
    identity.kernelName = "ttyACM123";
    attach(ORVEX_TYPE_TAMAR, identity);
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(askPort(handle, 15), 0xA0515006u);
    EXPECT_EQ(askPort(handle, 16), 0u);
    EXPECT_EQ(written(), std::string("/dev/ttyACM123\0", 15) + std::string(17, '#'));
}

TEST_F(DeviceInfo, WritesTheModelButNotTheCountWhenTheBufferIsTooSmall) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    log.take();
    std::uint32_t type = kUntouched;
    std::uint32_t count = kUntouched;
    EXPECT_EQ(api().GetDeviceInfo(handle, &type, buffer.data(), 13, &count), 0xA0515006u);
    EXPECT_EQ(type, 8u);
    EXPECT_EQ(count, kUntouched);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(DeviceInfo, WritesEverythingAtOnce) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    std::uint32_t type = kUntouched;
    std::uint32_t count = kUntouched;
    EXPECT_EQ(api().GetDeviceInfo(handle, &type, buffer.data(), 32, &count), 0u);
    EXPECT_EQ(type, 2u);
    EXPECT_STREQ(buffer.data(), "/dev/ttyACM0");
    EXPECT_EQ(count, 1u);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(DeviceInfo, FollowsTheOpenCount) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_EQ(openCount(handle), 1u);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_EQ(openCount(handle), 2u);
    api().CloseDevice(handle);
    EXPECT_EQ(openCount(handle), 1u);
    api().CloseDevice(handle);
    EXPECT_EQ(openCount(handle), 0u);
    const auto requests = device.requests();
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(device.requests(), requests);
}

}  // namespace
