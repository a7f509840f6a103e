// ORVEX_ExecuteCommand and ORVEX_ExecuteCommandWithValue with commands that fail.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <string>

#include "tests/support/attached_devices.h"
#include "tests/support/output_capture.h"

namespace {

/// What write() answers in this thread, when it is not -2.
thread_local ssize_t forced_write = -2;

}  // namespace

// The library's writes come here.
extern "C" ssize_t write(int descriptor, const void* buffer, std::size_t size) {
    if (forced_write != -2) {
        errno = EIO;
        return forced_write;
    }
    static const auto call =
        reinterpret_cast<ssize_t (*)(int, const void*, std::size_t)>(::dlsym(RTLD_NEXT, "write"));
    return call(descriptor, buffer, size);
}

namespace {

using orvex_test::api;
using orvex_test::OutputCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CommandFailures : public orvex_test::AttachedDevices {
  protected:
    ~CommandFailures() override { forced_write = -2; }

    /// Sends a command; the reply must stay as it is.
    static std::uint32_t statusOf(std::uint64_t handle, const char* command,
                                  const char* value = nullptr) {
        std::array<char, 16> reply{};
        reply.fill('#');
        const std::uint32_t status =
            api().ExecuteCommandWithValue(handle, command, reply.data(), 16, value);
        EXPECT_EQ(std::string(reply.data(), reply.size()), std::string(16, '#'));
        return status;
    }
};

TEST_F(CommandFailures, TheModelDoesNotHaveTheCommand) {
    const Device& device = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(statusOf(handle, "TurnLedOn", "1"), 0xA0515013u);
    EXPECT_EQ(statusOf(handle, "getlamphours"), 0xA0515013u);
    EXPECT_EQ(statusOf(handle, ""), 0xA0515013u);
    EXPECT_THAT(
        log.take(),
        ElementsAre("Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa0515013): Command <TurnLedOn> is not supported "
                    "for type 2",
                    "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa0515013): Command <getlamphours> is not "
                    "supported for type 2",
                    "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa0515013): Command <> is not supported for type "
                    "2"));
    EXPECT_EQ(device.received(), "");
}

TEST_F(CommandFailures, TheCallWithoutAValueLogsTheSameLine) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    char reply = '#';
    EXPECT_EQ(api().ExecuteCommand(handle, "OpenShutter", &reply, 1), 0xA0515013u);
    EXPECT_EQ(reply, '#');
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                            "Exception: DriverException (0xa0515013): Command <OpenShutter> is not "
                            "supported for type 8"));
}

TEST_F(CommandFailures, TheLineGoesToStandardOutput) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    api().SetLogMode(0);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    EXPECT_EQ(statusOf(handle, "Nothing"), 0xA0515013u);
    EXPECT_EQ(out.text(),
              "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. Exception: "
              "DriverException (0xa0515013): Command <Nothing> is not supported for type 8\n");
    EXPECT_EQ(err.text(), "");
}

TEST_F(CommandFailures, TheDeviceIsNotOpen) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    log.restart(0x7F);
    EXPECT_EQ(statusOf(handle, "GetSoftwareVersion"), 0x80517006u);
    EXPECT_THAT(log.take(),
                ElementsAre("LightDevice::executeString: GetSoftwareVersion",
                            "Error: LightDevice::executeString: LightDevice is not connected.",
                            "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                            "Exception: DriverException (0x80517006) "));
    EXPECT_EQ(device.received(), "");
}

TEST_F(CommandFailures, TheDeviceAnswersWithItsErrorReply) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onAny(), orvex::sim::errorReply());
    EXPECT_EQ(statusOf(handle, "SetIntensity", "1,2"), 0x80515003u);
    EXPECT_THAT(log.take(),
                ElementsAre("LightDevice::executeString: SetIntensity", "Send [ip=1,2*] ->",
                            "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                            "Exception: DriverException (0x80515003): LightDevice::executeString: "
                            "Command \"ip=1,2\" answered with error \"e\\r\""));
}

TEST_F(CommandFailures, TheDeviceDoesNotAnswer) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onAny(), orvex::sim::silence());
    log.restart(0x1);
    EXPECT_EQ(statusOf(handle, "GetSoftwareVersion"), 0xA0515019u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: SerialLink::recvArray: read returned with EOF (0)",
                            "Error: SerialLink::recvArray: read returned with EOF (0)",
                            "Error: SerialLink::recvArray: read returned with EOF (0)",
                            "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                            "Exception: DriverException (0xa0515019): SerialLink::recvChar: Wrong "
                            "recv length: 0"));
}

TEST_F(CommandFailures, TheDeviceWasPulledOut) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.hangUp();
    log.restart(0x1);
    EXPECT_EQ(statusOf(handle, "GetSoftwareVersion"), 0x80515003u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: SerialLink::purge: Error 5 from ioctl: Input/output error",
                            "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                            "Exception: DriverException (0x80515003): SerialLink::purge: read."));
}

TEST_F(CommandFailures, TheRequestCannotBeSent) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    log.restart(0x1);
    forced_write = -1;
    EXPECT_EQ(statusOf(handle, "GetSoftwareVersion"), 0xA051501Au);
    forced_write = 2;
    EXPECT_EQ(statusOf(handle, "GetSoftwareVersion"), 0xA051501Au);
    forced_write = -2;
    EXPECT_THAT(
        log.take(),
        ElementsAre("Error: SerialLink::sendArray: Error 5 from write: Input/output error",
                    "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa051501a): SerialLink::sendArray: write.",
                    "Error: SerialLink::sendArray: written bytes: 2 != requested len: 4",
                    "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa051501a): SerialLink::sendArray: Wrong sent "
                    "length: 2"));
}

TEST_F(CommandFailures, TheRequestIsTooLong) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onAny(), orvex::sim::scripted("\r"));
    std::array<char, 16> reply{};
    const std::string longest(1020, '5');
    EXPECT_EQ(
        api().ExecuteCommandWithValue(handle, "SetIntensity", reply.data(), 16, longest.c_str()),
        0u);
    EXPECT_EQ(device.received(), "ip=" + longest + "\r");
    device.clearRecord();
    log.restart(0x1);
    EXPECT_EQ(statusOf(handle, "SetIntensity", (longest + "5").c_str()), 0xA0515001u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                            "Exception: DriverException (0xa0515001) "));
    EXPECT_EQ(device.received(), "");
}

TEST_F(CommandFailures, TheNextCommandWorksAgain) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onAny().nth(1), orvex::sim::errorReply());
    EXPECT_EQ(statusOf(handle, "GetSoftwareVersion"), 0x80515003u);
    std::array<char, 16> reply{};
    EXPECT_EQ(api().ExecuteCommand(handle, "GetSoftwareVersion", reply.data(), 16), 0u);
    EXPECT_STREQ(reply.data(), "1.4.2\r");
    EXPECT_EQ(openCount(handle), 1u);
}

}  // namespace
