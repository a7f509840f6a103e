// ORVEX_OpenDevice: its arguments, and which device it takes.
#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "tests/support/attached_devices.h"
#include "tests/support/output_capture.h"

namespace {

using orvex_test::api;
using orvex_test::handleText;
using orvex_test::OutputCapture;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t kAny = 65535;

class OpenDevice : public orvex_test::AttachedDevices {
  protected:
    /// Opens and expects success; the handle.
    static std::uint64_t opened(std::uint32_t type, const char* port) {
        std::uint64_t handle = 0;
        EXPECT_EQ(api().OpenDevice(&handle, type, port, 9600), 0u);
        EXPECT_NE(handle, 0u);
        return handle;
    }

    /// Opens and expects that no device fits.
    static void expectNoMatch(std::uint32_t type, const char* port) {
        std::uint64_t handle = 0;
        EXPECT_EQ(api().OpenDevice(&handle, type, port, 9600), 0x80515001u);
        EXPECT_EQ(handle, 0u);
    }
};

TEST_F(OpenDevice, RefusesANullHandlePointerBeforeItScans) {
    attach(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(api().OpenDevice(nullptr, kAny, nullptr, 9600), 0xA0515002u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_OpenDevice: handle was nullptr"));
}

TEST_F(OpenDevice, RefusesAHandleThatHoldsAValueAndTellsItsAddress) {
    attach(ORVEX_TYPE_TAMAR);
    std::uint64_t handle = 0x1234;
    EXPECT_EQ(api().OpenDevice(&handle, kAny, nullptr, 9600), 0xA0515002u);
    EXPECT_EQ(handle, 0x1234u);
    const std::string address = handleText(reinterpret_cast<std::uintptr_t>(&handle));
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDevice: handle adress was not nullptr. Explicit open "
                            "with openDeviceEx (reopen not supported): 0x" +
                            address));
}

TEST_F(OpenDevice, RefusesAHandleLeftFromAnEarlierOpen) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    std::uint64_t handle = opened(kAny, nullptr);
    const std::uint64_t before = handle;
    const auto requests = device.requests();
    EXPECT_EQ(api().OpenDevice(&handle, kAny, nullptr, 9600), 0xA0515002u);
    EXPECT_EQ(handle, before);
    EXPECT_EQ(openCount(handle), 1u);
    EXPECT_EQ(device.requests(), requests);
}

TEST_F(OpenDevice, FindsNoneWhereNoneIsAttached) {
    expectNoMatch(kAny, nullptr);
    EXPECT_THAT(log.take(), ElementsAre("updateDeviceList: no Orvex devices found.",
                                        "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with "
                                        "type 65535 at <>, num scanned: 0"));
}

TEST_F(OpenDevice, NamesTheRequestThatNothingMatches) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_CEDAR);
    log.restart(0x1);
    expectNoMatch(kAny, "/dev/ttyACM7");
    expectNoMatch(9, "");
    expectNoMatch(2, "/dev/ttyACM0");
    expectNoMatch(65535, "/dev/ttyACM");
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 "
                            "at </dev/ttyACM7>, num scanned: 2",
                            "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 9 at "
                            "<>, num scanned: 2",
                            "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 2 at "
                            "</dev/ttyACM0>, num scanned: 2",
                            "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 "
                            "at </dev/ttyACM>, num scanned: 2"));
}

TEST_F(OpenDevice, WritesThatNothingMatchesToStandardOutput) {
    api().SetLogMode(0);
    api().SetLogBits(0x1);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    expectNoMatch(kAny, nullptr);
    EXPECT_EQ(out.text(),
              "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 at <>, num "
              "scanned: 0\n");
    EXPECT_EQ(err.text(), "");
}

TEST_F(OpenDevice, WritesRefusedArgumentsToStandardError) {
    api().SetLogMode(0);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    EXPECT_EQ(api().OpenDevice(nullptr, kAny, nullptr, 9600), 0xA0515002u);
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(err.text(), "Error: ORVEX_OpenDevice: handle was nullptr\n");
}

TEST_F(OpenDevice, TakesTheOnlyDevice) {
    attach(ORVEX_TYPE_TAMAR);
    log.restart(0x20);
    const std::uint64_t handle = opened(kAny, nullptr);
    EXPECT_THAT(log.take(), ElementsAre("LightDevice::getComMapping: matches type: Tamar",
                                        "initDevice: succeed.", "openConnection: succeed.",
                                        "ORVEX_OpenDevice: 0x" + handleText(handle)));
    EXPECT_EQ(openCount(handle), 1u);
    EXPECT_EQ(handleAt("/dev/ttyACM0"), handle);
}

TEST_F(OpenDevice, SendsTheRequestsOfALampsReadOut) {
    const Device& device = attach(ORVEX_TYPE_CEDAR);
    opened(kAny, nullptr);
    EXPECT_THAT(device.requests(), ElementsAre("tt\r", "jj\r", "uu\r", "ni\r", "dd\r", "gt\r"));
}

TEST_F(OpenDevice, SendsTheRequestsOfALedSourcesReadOut) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    opened(kAny, nullptr);
    EXPECT_THAT(device.requests(),
                ElementsAre("co\r", "lw?\r", "us?\r", "ni?\r", "ip?\r", "gt?\r", "ln?\r", "sn?\r"));
}

TEST_F(OpenDevice, TakesAnEmptyPortForAnyPort) {
    attach(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(portOf(opened(kAny, "")), "/dev/ttyACM0");
}

TEST_F(OpenDevice, TakesEachUnopenedDeviceOnceThenNone) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t first = opened(kAny, nullptr);
    const std::uint64_t second = opened(kAny, nullptr);
    EXPECT_NE(first, second);
    EXPECT_EQ(openCount(first), 1u);
    EXPECT_EQ(openCount(second), 1u);
    log.restart(0x1);
    expectNoMatch(kAny, nullptr);
    expectNoMatch(kAny, "");
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 "
                            "at <>, num scanned: 2",
                            "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 "
                            "at <>, num scanned: 2"));
}

TEST_F(OpenDevice, TakesAClosedDeviceAgain) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t first = opened(kAny, nullptr);
    api().CloseDevice(first);
    EXPECT_EQ(opened(kAny, nullptr), first);
    EXPECT_EQ(openCount(first), 1u);
}

TEST_F(OpenDevice, TakesTheDeviceOfTheRequestedModel) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_CEDAR);
    EXPECT_EQ(portOf(opened(2, nullptr)), "/dev/ttyACM1");
    EXPECT_EQ(portOf(opened(8, nullptr)), "/dev/ttyACM0");
}

TEST_F(OpenDevice, TakesTheDeviceAtTheRequestedPort) {
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    attach(ORVEX_TYPE_TAMAR);
    EXPECT_EQ(portOf(opened(kAny, "/dev/ttyACM1")), "/dev/ttyACM1");
    EXPECT_EQ(portOf(opened(8, "/dev/ttyACM2")), "/dev/ttyACM2");
    EXPECT_EQ(portOf(opened(8, "/dev/ttyACM0")), "/dev/ttyACM0");
}

TEST_F(OpenDevice, OpensAnOpenDeviceAgainByItsPort) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t first = opened(kAny, nullptr);
    const auto requests = device.requests();
    log.restart(0x7F);
    EXPECT_EQ(opened(kAny, "/dev/ttyACM0"), first);
    const Lines lines = log.take();
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[3], "updateDeviceList: LightDevice <" + orvex_test::lowBitsText(first) +
                            "> already registered at COM port \"/dev/ttyACM0\"");
    EXPECT_EQ(lines[4],
              "LightDevice::openConnection: LightDevice openend again. connection_count_: 2");
    EXPECT_EQ(lines[5], "ORVEX_OpenDevice: 0x" + handleText(first));
    EXPECT_EQ(openCount(first), 2u);
    EXPECT_EQ(device.requests(), requests);
}

TEST_F(OpenDevice, OpensAnOpenDeviceAgainByItsModel) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t first = opened(kAny, nullptr);
    EXPECT_EQ(opened(2, nullptr), first);
    EXPECT_EQ(opened(2, ""), first);
    EXPECT_EQ(openCount(first), 3u);
}

TEST_F(OpenDevice, FindsADeviceAttachedSinceTheLastScan) {
    EXPECT_THAT(scan(), IsEmpty());
    attach(ORVEX_TYPE_CEDAR);
    EXPECT_EQ(portOf(opened(kAny, nullptr)), "/dev/ttyACM0");
}

TEST_F(OpenDevice, ForgetsDevicesThatAreGone) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = opened(kAny, nullptr);
    unplug("/dev/ttyACM0");
    log.restart(0x7F);
    expectNoMatch(kAny, nullptr);
    EXPECT_THAT(log.take(),
                ElementsAre("updateDeviceList: no Orvex devices found.",
                            "updateDeviceList: LightDevice <" + orvex_test::lowBitsText(handle) +
                                ", 2> @ /dev/ttyACM0 was not found anymore. Close and delete.",
                            "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 "
                            "at <>, num scanned: 0"));
    EXPECT_EQ(api().GetDeviceInfo(handle, nullptr, nullptr, 0, nullptr), 0xA0515007u);
}

}  // namespace
