// Calls from several threads.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/attached_devices.h"
#include "tests/support/waiting.h"

namespace {

using orvex_test::api;
using orvex_test::operator""ms;
using ::testing::Each;

class ParallelCalls : public orvex_test::AttachedDevices {
  protected:
    static std::string replyTo(std::uint64_t handle, const char* command) {
        std::array<char, 64> reply{};
        EXPECT_EQ(api().ExecuteCommand(handle, command, reply.data(), reply.size()), 0u);
        return reply.data();
    }

    static Setup named(const std::string& version) {
        Setup setup;
        setup.softwareVersion = version;
        return setup;
    }
};

TEST_F(ParallelCalls, OnOneDeviceFollowEachOther) {
    constexpr int kRounds = 50;
    Device& device = attach(named("1.0"));
    const std::uint64_t handle = open();
    std::vector<std::string> versions;
    std::vector<std::string> serials;
    std::thread other([&] {
        for (int k = 0; k < kRounds; ++k) {
            serials.push_back(replyTo(handle, "GetUnitSerialNumber"));
        }
    });
    for (int k = 0; k < kRounds; ++k) {
        versions.push_back(replyTo(handle, "GetSoftwareVersion"));
    }
    other.join();
    EXPECT_THAT(versions, Each("1.0\r"));
    EXPECT_THAT(serials, Each("SN-0042\r"));
    EXPECT_EQ(device.requests().size(), 2u * kRounds);
    EXPECT_THAT(device.requests(), Each(::testing::AnyOf("sv?\r", "sn?\r")));
}

TEST_F(ParallelCalls, OnOneDeviceLogTheirTrafficInPairs) {
    constexpr int kRounds = 25;
    attach(named("1.0"));
    const std::uint64_t handle = open();
    log.restart(0x40);
    std::thread other([&] {
        for (int k = 0; k < kRounds; ++k) {
            replyTo(handle, "GetUnitSerialNumber");
        }
    });
    for (int k = 0; k < kRounds; ++k) {
        replyTo(handle, "GetSoftwareVersion");
    }
    other.join();
    const Lines lines = log.take();
    ASSERT_EQ(lines.size(), 4u * kRounds);
    for (std::size_t k = 0; k < lines.size(); k += 2) {
        if (lines[k] == "Send [sv?*] ->") {
            EXPECT_EQ(lines[k + 1], " <-Received [1.0*]");
        } else {
            EXPECT_EQ(lines[k], "Send [sn?*] ->");
            EXPECT_EQ(lines[k + 1], " <-Received [SN-0042*]");
        }
    }
}

TEST_F(ParallelCalls, OnAnotherDeviceDoNotWait) {
    Device& slow = attach(named("slow"));
    attach(named("quick"));
    const std::uint64_t first = open("/dev/ttyACM0");
    const std::uint64_t second = open("/dev/ttyACM1");
    slow.addFault(orvex::sim::onAny(), orvex::sim::delayed(1000ms));
    std::atomic<bool> answered{false};
    std::thread other([&] {
        EXPECT_EQ(replyTo(first, "GetSoftwareVersion"), "slow\r");
        answered = true;
    });
    EXPECT_TRUE(slow.waitForRequests(1));
    EXPECT_EQ(replyTo(second, "GetSoftwareVersion"), "quick\r");
    EXPECT_FALSE(answered);
    other.join();
}

TEST_F(ParallelCalls, OpenAndCloseDifferentDevices) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_CEDAR);
    const std::vector<std::uint64_t> handles = scan();
    ASSERT_EQ(handles.size(), 2u);
    const auto openAndClose = [](std::uint64_t handle) {
        for (int k = 0; k < 5; ++k) {
            EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
            api().CloseDevice(handle);
        }
    };
    std::thread other(openAndClose, handles[0]);
    openAndClose(handles[1]);
    other.join();
    EXPECT_EQ(openCount(handles[0]), 0u);
    EXPECT_EQ(openCount(handles[1]), 0u);
}

}  // namespace
