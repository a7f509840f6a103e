// The longest that each call takes, whatever its device does.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "sim/fault.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;
using orvex::sim::delayed;
using orvex::sim::endless;
using orvex::sim::errorReply;
using orvex::sim::Fault;
using orvex::sim::onAny;
using orvex::sim::onCommand;
using orvex::sim::scripted;
using orvex::sim::silence;
using orvex::sim::Trigger;
using orvex::sim::unterminated;
using Milliseconds = std::chrono::milliseconds;

/// A little less than the library waits for a byte, so that a busy machine's device is in time.
constexpr Milliseconds kLate = kByteLimit - 300ms;

/// A Tamar's fourth LED is the first of its group.
constexpr int kGrouped = 3;

std::uint32_t open(std::uint64_t handle) {
    return ORVEX_OpenDeviceEx(handle);
}
std::uint32_t close(std::uint64_t handle) {
    ORVEX_CloseDevice(handle);
    return ORVEX_OK;
}
std::uint32_t command(std::uint64_t handle) {
    std::array<char, 2048> reply{};
    return ORVEX_ExecuteCommand(handle, "GetSoftwareVersion", reply.data(), reply.size());
}
std::uint32_t switchOff(std::uint64_t handle) {
    return ORVEX_SwitchOrvex(handle, true, false);
}
std::uint32_t writeRecord(std::uint64_t handle, int lit) {
    OrvexStruct record{};
    record.iSize = sizeof record;
    EXPECT_EQ(ORVEX_GetOVStruct(handle, &record), ORVEX_OK);
    record.aChannels[lit].iIntensity = 100;
    record.aChannels[lit].iState = 1;
    return ORVEX_SetOVStruct(handle, &record);
}
std::uint32_t lightOne(std::uint64_t handle) {
    return writeRecord(handle, 0);
}
std::uint32_t lightGrouped(std::uint64_t handle) {
    return writeRecord(handle, kGrouped);
}

/// Each byte of a reply at the last moment.
Fault lateBytes(const std::string& reply) {
    Fault fault = scripted(reply);
    fault.delay = kLate;
    fault.bytePause = kLate;
    return fault;
}

/// A call on a device that fails, and the time it may take.
struct Case {
    const char* name;
    OrvexType model;
    std::vector<std::pair<Trigger, Fault>> faults;
    std::uint32_t (*call)(std::uint64_t handle);
    std::uint32_t status;
    Milliseconds least;
    Milliseconds limit;
};

void PrintTo(const Case& tested, std::ostream* out) {
    *out << tested.name;
}

class Limits : public testing::TestWithParam<Case> {
  protected:
    ThreadLog log_{LOG_BIT_ERROR};
};

/// A new device that is open unless opening is what is measured.
Measured measure(const Case& tested) {
    RegisteredLight light(tested.model);
    if (tested.call != open && ORVEX_OpenDeviceEx(light.handle) != ORVEX_OK) {
        return {0ms, "not opened"};
    }
    for (const auto& [trigger, fault] : tested.faults) {
        light.device.addFault(trigger, fault);
    }
    const auto begin = std::chrono::steady_clock::now();
    const std::uint32_t status = tested.call(light.handle);
    const auto taken = std::chrono::steady_clock::now() - begin;
    return {taken, status == tested.status ? "" : "status " + std::to_string(status)};
}

TEST_P(Limits, AreKept) {
    const Case& tested = GetParam();
    expectInTime(tested.least, tested.limit, [&] { return measure(tested); });
}

constexpr Milliseconds kAlmostSilence = kSilenceLimit - 50ms;

const Case kCases[] = {
    {"CommandWithoutAnAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), silence()}},
     command,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit},
    {"CommandWithALateAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), delayed(kLate)}},
     command,
     ORVEX_OK,
     kLate,
     kByteLimit},
    {"CommandWithALateByteEach",
     ORVEX_TYPE_TAMAR,
     {{onAny(), lateBytes("ab\r")}},
     command,
     ORVEX_OK,
     3 * kLate,
     3 * kByteLimit},
    {"CommandWithAByteMissing",
     ORVEX_TYPE_TAMAR,
     {{onAny(), unterminated()}},
     command,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit},
    {"CommandWithAnErrorReply",
     ORVEX_TYPE_TAMAR,
     {{onAny(), errorReply()}},
     command,
     ORVEX_ERR_IO,
     0ms,
     0ms},
    {"CommandWithAnEndlessAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), endless()}},
     command,
     ORVEX_OK,
     0ms,
     0ms},
    {"CommandAtTheEndOfThePort",
     ORVEX_TYPE_TAMAR,
     {{onAny(), orvex::sim::hangUp()}},
     command,
     ORVEX_ERR_RECV,
     0ms,
     kHangUpLimit},
    {"OpenWithoutAnAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), silence()}},
     open,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit + kReleasePause},
    {"OpenWithoutTheLastAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny().nth(8), silence()}},
     open,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit},
    {"OpenWithLateAnswersAndNone",
     ORVEX_TYPE_ALDER,
     {{onAny(), delayed(kLate)}, {onAny().nth(3), silence()}},
     open,
     ORVEX_ERR_RECV,
     2 * kLate + kAlmostSilence,
     2 * kByteLimit + kSilenceLimit},
    {"CloseOfLedsWithoutAnAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), silence()}},
     close,
     ORVEX_OK,
     kAlmostSilence,
     kSilenceLimit},
    {"CloseOfALampWithoutAnAnswer",
     ORVEX_TYPE_CEDAR,
     {{onAny(), silence()}},
     close,
     ORVEX_OK,
     kAlmostSilence,
     kSilenceLimit},
    {"SwitchingWithoutAnAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), silence()}},
     switchOff,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit},
    {"RecordWithoutAnAnswer",
     ORVEX_TYPE_TAMAR,
     {{onAny(), silence()}},
     lightOne,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit},
    {"RecordWithoutTheLastAnswer",
     ORVEX_TYPE_TAMAR,
     {{onCommand("TurnLedOn"), silence()}},
     lightOne,
     ORVEX_ERR_RECV,
     kAlmostSilence,
     kSilenceLimit},
    {"RecordOfAGroup",
     ORVEX_TYPE_TAMAR,
     {},
     lightGrouped,
     ORVEX_OK,
     kGroupPause + kPollPause,
     kGroupPause + kPollPause},
    {"RecordOfAGroupWithoutAnAnswer",
     ORVEX_TYPE_TAMAR,
     {{onCommand("GetUnitStatus"), silence()}},
     lightGrouped,
     ORVEX_ERR_RECV,
     kGroupPause + kPollPause + kAlmostSilence,
     kGroupPause + kPollPause + kSilenceLimit},
};

INSTANTIATE_TEST_SUITE_P(, Limits, testing::ValuesIn(kCases),
                         [](const auto& test) { return std::string(test.param.name); });

/// A thread's command on a device that is silent; the device is busy when it returns.
class BusyDevice : public testing::Test {
  protected:
    BusyDevice() {
        EXPECT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
        light_.device.addFault(onAny(), silence());
        light_.device.clearRecord();
        other_ = std::thread([this] { EXPECT_EQ(command(light_.handle), ORVEX_ERR_RECV); });
        EXPECT_TRUE(light_.device.waitForRequests(1));
    }
    ~BusyDevice() override { other_.join(); }

    ThreadLog log_{LOG_BIT_ERROR};
    RegisteredLight light_{ORVEX_TYPE_TAMAR};
    std::thread other_;
};

TEST_F(BusyDevice, IsDescribedAtOnce) {
    const std::uint64_t handle = light_.handle;
    expectInTime(0ms, 0ms, [handle] {
        std::array<char, 128> port{};
        OrvexStruct record{};
        record.iSize = sizeof record;
        std::uint32_t number = 0;
        const auto begin = std::chrono::steady_clock::now();
        const bool answered =
            ORVEX_GetDeviceInfo(handle, &number, port.data(), port.size(), &number) == ORVEX_OK &&
            ORVEX_GetOVStruct(handle, &record) == ORVEX_OK &&
            ORVEX_GetVersion(&number, nullptr, nullptr, nullptr) == ORVEX_OK;
        return Measured{std::chrono::steady_clock::now() - begin, answered ? "" : "no answer"};
    });
}

TEST_F(BusyDevice, KeepsASecondThreadWaitingForItsTurnToo) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(command(light_.handle), ORVEX_ERR_RECV);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, kSilenceLimit + 1s);
}

TEST_F(BusyDevice, KeepsASecondOpenWaiting) {
    EXPECT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    EXPECT_EQ(light_.device.requests().size(), 1U);
    light_.device.clearFaults();
    std::uint32_t opens = 0;
    EXPECT_EQ(ORVEX_GetDeviceInfo(light_.handle, nullptr, nullptr, 0, &opens), ORVEX_OK);
    EXPECT_EQ(opens, 2U);
}

}  // namespace
