// Scans that find a port for which no device can be made.
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <string>

#include "tests/support/api_log.h"
#include "tests/support/c_api.h"
#include "tests/support/fake_udev.h"

namespace {

using orvex_test::api;
using orvex_test::ApiLog;
using orvex_test::FakePort;
using orvex_test::FakeUdev;
using orvex_test::tamarPort;
using ::testing::Each;
using ::testing::ElementsAre;

constexpr std::uint32_t kUntouched = 0xAAAAAAAA;

/// A port whose node no device accepts.
FakePort refusedPort() {
    FakePort port = tamarPort(7);
    port.node = "/dev/acm7";
    return port;
}

class RefusedPort : public ::testing::Test {
  protected:
    ~RefusedPort() override {
        udev.ports.clear();
        api().SetLogBits(0);
        scan();
        EXPECT_EQ(udev.unreleased(), 0u);
        EXPECT_EQ(udev.misused(), 0u);
    }

    std::uint32_t scan() {
        count = kUntouched;
        return api().ScanDevices(slots.data(), 4, &count);
    }

    ApiLog log;
    FakeUdev udev;
    std::array<std::uint64_t, 4> slots{};
    std::uint32_t count = 0;
};

TEST_F(RefusedPort, FailsTheScan) {
    udev.ports = {refusedPort()};
    EXPECT_EQ(scan(), 0xA0515001u);
    EXPECT_THAT(
        log.take(),
        ElementsAre("LightDevice::getComMapping: found port name in product attribute: Orvex "
                    "Tamar, udev: /sys/devices/usb1/1-7/tty/ttyACM7",
                    "LightDevice::getComMapping: port: /dev/acm7, udev: "
                    "/sys/devices/usb1/1-7/tty/ttyACM7",
                    "LightDevice::getComMapping: matches type: Tamar",
                    "Error: LightDevice::openConnection: wrong pattern found in parameter sz_port",
                    "Error: updateDeviceList: failed. Exception: DriverException (0xa0515001) ",
                    "Error: ORVEX_ScanDevices: failed. Exception: DriverException (0xa0515001) "));
    EXPECT_EQ(count, kUntouched);
    EXPECT_THAT(slots, Each(0u));
}

TEST_F(RefusedPort, FailsAnOpen) {
    udev.ports = {refusedPort()};
    log.restart(0x1);
    std::uint64_t handle = 0;
    EXPECT_EQ(api().OpenDevice(&handle, 65535, nullptr, 9600), 0xA0515001u);
    EXPECT_EQ(handle, 0u);
    EXPECT_THAT(
        log.take(),
        ElementsAre("Error: LightDevice::openConnection: wrong pattern found in parameter sz_port",
                    "Error: updateDeviceList: failed. Exception: DriverException (0xa0515001) ",
                    "Error: ORVEX_OpenDevice: failed. Exception: DriverException (0xa0515001) "));
}

TEST_F(RefusedPort, LeavesTheArrayButNotTheRegistryAsItWas) {
    udev.ports = {tamarPort(0), tamarPort(1)};
    EXPECT_EQ(scan(), 0u);
    const auto before = slots;
    udev.ports = {tamarPort(1), refusedPort()};
    EXPECT_EQ(scan(), 0xA0515001u);
    EXPECT_EQ(slots, before);
    EXPECT_EQ(count, kUntouched);
    std::array<char, 64> port{};
    int known = 0;
    for (const std::uint64_t handle : {before[0], before[1]}) {
        if (api().GetDeviceInfo(handle, nullptr, port.data(), 64, nullptr) == 0u) {
            EXPECT_STREQ(port.data(), "/dev/ttyACM1");
            ++known;
        }
    }
    EXPECT_EQ(known, 1);
}

TEST_F(RefusedPort, DoesNotUndoEarlierRegistrations) {
    udev.ports = {tamarPort(0), tamarPort(1), tamarPort(2), refusedPort()};
    log.restart(0x2);
    EXPECT_EQ(scan(), 0xA0515001u);
    // How many came before the refused one is the mapping's own choice.
    std::size_t registered = 0;
    for (const std::string& line : log.take()) {
        registered += line.rfind("updateDeviceList: new LightDevice <", 0) == 0 ? 1 : 0;
    }
    udev.ports.pop_back();
    EXPECT_EQ(scan(), 0u);
    EXPECT_EQ(count, 3u);
    std::size_t already = 0;
    for (const std::string& line : log.take()) {
        already += line.find("> already registered at COM port \"") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(already, registered);
}

TEST_F(RefusedPort, IsForgottenOnceItIsGone) {
    udev.ports = {refusedPort()};
    EXPECT_EQ(scan(), 0xA0515001u);
    udev.ports = {tamarPort(0)};
    EXPECT_EQ(scan(), 0u);
    EXPECT_EQ(count, 1u);
    EXPECT_NE(slots[0], 0u);
}

}  // namespace
