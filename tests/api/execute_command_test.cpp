// ORVEX_ExecuteCommand and ORVEX_ExecuteCommandWithValue: arguments and reply buffer.
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <string>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ExecuteCommand : public orvex_test::AttachedDevices {
  protected:
    /// Sends a command with a buffer of @p size bytes; what is behind it must stay as it is.
    std::uint32_t execute(std::uint64_t handle, const char* command, std::uint32_t size) {
        buffer.fill('#');
        return api().ExecuteCommand(handle, command, buffer.data(), size);
    }

    /// The whole buffer.
    [[nodiscard]] std::string written() const { return {buffer.data(), buffer.size()}; }

    std::array<char, 16> buffer{};
};

TEST_F(ExecuteCommand, RefusesAnUnknownHandleFirst) {
    EXPECT_EQ(execute(0x1234, "GetSoftwareVersion", 16), 0xA0515007u);
    EXPECT_EQ(execute(0, "GetSoftwareVersion", 16), 0xA0515007u);
    EXPECT_EQ(execute(0x1234, nullptr, 16), 0xA0515007u);
    EXPECT_EQ(api().ExecuteCommand(0x1234, nullptr, nullptr, 0), 0xA0515007u);
    EXPECT_EQ(api().ExecuteCommandWithValue(0x1234, nullptr, nullptr, 0, nullptr), 0xA0515007u);
    EXPECT_EQ(written(), std::string(16, '#'));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(ExecuteCommand, RefusesANullCommandOrReplyWithoutAWord) {
    const Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(execute(handle, nullptr, 16), 0xA0515001u);
    EXPECT_EQ(written(), std::string(16, '#'));
    EXPECT_EQ(api().ExecuteCommand(handle, "GetSoftwareVersion", nullptr, 16), 0xA0515001u);
    EXPECT_EQ(api().ExecuteCommandWithValue(handle, nullptr, nullptr, 0, "1"), 0xA0515001u);
    EXPECT_THAT(log.take(), IsEmpty());
    EXPECT_EQ(device.received(), "");
}

TEST_F(ExecuteCommand, CutsTheLastCharacterOfAReplyThatJustFits) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.replyWith("GetSoftwareVersion", "1.23\r");
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 4), 0xA0515006u);
    EXPECT_EQ(written(), std::string(16, '#'));
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 5), 0u);
    EXPECT_EQ(written(), std::string("1.23\0", 5) + std::string(11, '#'));
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 6), 0u);
    EXPECT_EQ(written(), std::string("1.23\r\0", 6) + std::string(10, '#'));
    EXPECT_THAT(device.requests(), ElementsAre("sv?\r", "sv?\r", "sv?\r"));
}

TEST_F(ExecuteCommand, LogsATooSmallBufferLikeASuccess) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 0), 0xA0515006u);
    EXPECT_EQ(written(), std::string(16, '#'));
    EXPECT_THAT(log.take(), ElementsAre("LightDevice::executeString: GetSoftwareVersion",
                                        "Send [sv?*] ->", " <-Received [1.4.2*]"));
}

TEST_F(ExecuteCommand, ZeroesTheRestOfTheBuffer) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.replyWith("GetSoftwareVersion", "1\r");
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 12), 0u);
    EXPECT_EQ(written(), std::string("1\r") + std::string(10, '\0') + std::string(4, '#'));
}

TEST_F(ExecuteCommand, TakesASingleByteForAReplyOfOneByte) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(execute(handle, "LockFrontPanel", 1), 0u);
    EXPECT_EQ(written(), std::string(1, '\0') + std::string(15, '#'));
    EXPECT_EQ(execute(handle, "LockFrontPanel", 0), 0xA0515006u);
    EXPECT_EQ(written(), std::string(16, '#'));
}

TEST_F(ExecuteCommand, CopiesZeroBytesWithinAReply) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.replyWith("GetSoftwareVersion", std::string("a\0b\r", 4));
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 3), 0xA0515006u);
    EXPECT_EQ(execute(handle, "GetSoftwareVersion", 5), 0u);
    EXPECT_EQ(written(), std::string("a\0b\r\0", 5) + std::string(11, '#'));
}

TEST_F(ExecuteCommand, HandsOnTheLongestReply) {
    Device& device = attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onCommand("GetSoftwareVersion"), orvex::sim::endless(1024, 'x'));
    std::string reply(1030, '#');
    EXPECT_EQ(api().ExecuteCommand(handle, "GetSoftwareVersion", reply.data(), 1023), 0xA0515006u);
    EXPECT_EQ(reply, std::string(1030, '#'));
    EXPECT_EQ(api().ExecuteCommand(handle, "GetSoftwareVersion", reply.data(), 1025), 0u);
    EXPECT_EQ(reply, std::string(1024, 'x') + std::string(1, '\0') + std::string(5, '#'));
}

TEST_F(ExecuteCommand, PutsTheValueBehindTheRequest) {
    Device& device = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(api().ExecuteCommandWithValue(handle, "SetIntensity", buffer.data(), 16, "75"), 0u);
    EXPECT_THAT(device.requests(), ElementsAre("d75\r"));
    EXPECT_EQ(device.state().channels.at(0).intensity, 750);
}

TEST_F(ExecuteCommand, TakesANullOrAnEmptyValueForNone) {
    const Device& device = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(api().ExecuteCommandWithValue(handle, "OpenShutter", buffer.data(), 16, nullptr), 0u);
    EXPECT_EQ(api().ExecuteCommandWithValue(handle, "CloseShutter", buffer.data(), 16, ""), 0u);
    EXPECT_EQ(api().ExecuteCommand(handle, "OpenShutter", buffer.data(), 16), 0u);
    EXPECT_THAT(device.requests(), ElementsAre("mm\r", "zz\r", "mm\r"));
    EXPECT_TRUE(device.state().shutterOpen);
}

TEST_F(ExecuteCommand, KeepsTheCarriageReturnOfAReply) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = open();
    EXPECT_EQ(execute(handle, "GetUnitSerialNumber", 16), 0u);
    EXPECT_STREQ(buffer.data(), "SN-0042\r");
}

TEST_F(ExecuteCommand, TalksToTheDeviceOfTheHandle) {
    Setup setup;
    setup.softwareVersion = "first";
    attach(setup);
    setup.softwareVersion = "second";
    attach(setup);
    const std::uint64_t first = open("/dev/ttyACM0");
    const std::uint64_t second = open("/dev/ttyACM1");
    EXPECT_EQ(execute(second, "GetSoftwareVersion", 16), 0u);
    EXPECT_STREQ(buffer.data(), "second\r");
    EXPECT_EQ(execute(first, "GetSoftwareVersion", 16), 0u);
    EXPECT_STREQ(buffer.data(), "first\r");
}

}  // namespace
