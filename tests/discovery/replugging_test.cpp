// Devices that come and go between scans.
#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <string>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Replugging : public orvex_test::AttachedDevices {
  protected:
    static std::uint32_t typeOf(std::uint64_t handle) {
        std::uint32_t type = 0xAAAAAAAA;
        EXPECT_EQ(api().GetDeviceInfo(handle, &type, nullptr, 0, nullptr), 0u);
        return type;
    }

    /// Every call refuses the handle.
    static void expectUnknown(std::uint64_t handle) {
        std::array<char, 64> text{};
        OrvexStruct record{};
        record.iSize = 2008;
        EXPECT_EQ(api().OpenDeviceEx(handle), 0xA0515002u);
        EXPECT_EQ(api().GetDeviceInfo(handle, nullptr, nullptr, 0, nullptr), 0xA0515007u);
        EXPECT_EQ(api().ExecuteCommand(handle, "Connect", text.data(), 64), 0xA0515007u);
        EXPECT_EQ(api().ExecuteCommandWithValue(handle, "Connect", text.data(), 64, ""),
                  0xA0515007u);
        EXPECT_EQ(api().GetOVStruct(handle, &record), 0xA0515007u);
        EXPECT_EQ(api().SetOVStruct(handle, &record), 0xA0515007u);
        EXPECT_EQ(api().SwitchOrvex(handle, true, false), 0xA0515007u);
        api().CloseDevice(handle);
    }
};

/// Counts how often a file is opened.
class OpenWatch {
  public:
    explicit OpenWatch(const std::string& path)
        : watch_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        EXPECT_GE(::inotify_add_watch(watch_, path.c_str(), IN_OPEN), 0);
    }
    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;
    ~OpenWatch() { ::close(watch_); }

    /// Whether it was opened since the last question.
    [[nodiscard]] bool wasOpened() const {
        alignas(inotify_event) std::array<char, 4096> events{};
        return ::read(watch_, events.data(), events.size()) > 0;
    }

  private:
    int watch_;
};

TEST_F(Replugging, MakesTheHandleUnknownToEveryCall) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    unplug("/dev/ttyACM0");
    EXPECT_THAT(scan(), IsEmpty());
    log.restart(0x1F);
    expectUnknown(handle);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDeviceEx: handle for device is not found.",
                            "Warning: ORVEX_CloseDevice: Handle not found: " +
                                orvex_test::handleText(handle),
                            "--------------------------------------------------------------"));
}

TEST_F(Replugging, EndsAnOpenDeviceWithoutARequest) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    unplug("/dev/ttyACM0");
    log.restart(0x7F);
    EXPECT_THAT(scan(), IsEmpty());
    EXPECT_THAT(log.take(),
                ElementsAre("updateDeviceList: no Orvex devices found.",
                            "updateDeviceList: LightDevice <" + orvex_test::lowBitsText(handle) +
                                ", 8> @ /dev/ttyACM0 was not found anymore. Close and delete."));
    EXPECT_EQ(device.received(), "");
    expectUnknown(handle);
}

TEST_F(Replugging, LogsThatAnOpenDevicesPortIsDead) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    open();
    device.hangUp();
    unplug("/dev/ttyACM0");
    log.restart(0x1);
    EXPECT_THAT(scan(), IsEmpty());
    EXPECT_THAT(log.take(),
                ElementsAre("Error: SerialLink::disconnect: set tty attributes. Error 5 "
                            "from tcsetattr: Input/output error"));
}

TEST_F(Replugging, BetweenTwoScansGoesUnnoticed) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    unplug("/dev/ttyACM0");
    attach(ORVEX_TYPE_CEDAR);
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_EQ(typeOf(handle), 8u);
}

TEST_F(Replugging, WithAScanInBetweenMakesANewDevice) {
    attach(ORVEX_TYPE_TAMAR);
    open();
    unplug("/dev/ttyACM0");
    EXPECT_THAT(scan(), IsEmpty());
    const Device& cedar = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = scan().at(0);
    EXPECT_EQ(typeOf(handle), 2u);
    EXPECT_EQ(openCount(handle), 0u);
    EXPECT_EQ(cedar.received(), "");
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    EXPECT_EQ(openCount(handle), 1u);
}

TEST_F(Replugging, LeavesTheOtherDevicesOpen) {
    attach(ORVEX_TYPE_TAMAR);
    const Device& kept = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open("/dev/ttyACM1");
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    unplug("/dev/ttyACM0");
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_EQ(openCount(handle), 2u);
    std::array<char, 16> reply{};
    EXPECT_EQ(api().ExecuteCommand(handle, "GetSoftwareVersion", reply.data(), 16), 0u);
    EXPECT_THAT(kept.requests(), ElementsAre("sv?\r"));
}

TEST_F(Replugging, NeverMakesAScanOpenADeviceOrSendAByte) {
    const Device& tamar = attach(ORVEX_TYPE_TAMAR);
    const Device& cedar = attach(ORVEX_TYPE_CEDAR);
    const OpenWatch tamarPort(tamar.slavePath());
    const OpenWatch cedarPort(cedar.slavePath());
    for (int k = 0; k < 3; ++k) {
        for (const std::uint64_t handle : scan()) {
            EXPECT_EQ(openCount(handle), 0u);
        }
        unplug("/dev/ttyACM1");
        EXPECT_EQ(scan().size(), 1u);
        attach(ORVEX_TYPE_CEDAR);
    }
    EXPECT_FALSE(tamarPort.wasOpened());
    EXPECT_FALSE(cedarPort.wasOpened());
    EXPECT_EQ(tamar.received(), "");
    EXPECT_EQ(cedar.received(), "");
    open("/dev/ttyACM0");
    EXPECT_TRUE(tamarPort.wasOpened());
}

TEST_F(Replugging, NeverMakesAScanTouchAnOpenDevice) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    const OpenWatch port(device.slavePath());
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_EQ(openCount(handle), 1u);
    EXPECT_EQ(device.received(), "");
    EXPECT_FALSE(port.wasOpened());
}

}  // namespace
