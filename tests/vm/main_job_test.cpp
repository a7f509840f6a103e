// What the library is for, on the kernel's own driver.
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include "tests/vm/usb_lights.h"

namespace {

using orvex::sim::onCommand;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class MainJob : public orvex_test::UsbLights {
  protected:
    static termios settingsOf(const std::string& port) {
        termios settings{};
        const int fd = ::open(port.c_str(), O_RDWR | O_NOCTTY);
        EXPECT_EQ(::tcgetattr(fd, &settings), 0);
        ::close(fd);
        return settings;
    }
};

TEST_F(MainJob, FindsALightByModelAndPort) {
    auto& light = plugTamar();
    EXPECT_EQ(light.port(), "/dev/ttyACM0");
    const std::vector<std::uint64_t> handles = scan();
    ASSERT_THAT(handles, SizeIs(1));
    std::uint32_t type = 0;
    std::uint32_t opened = 1;
    EXPECT_EQ(ORVEX_GetDeviceInfo(handles[0], &type, nullptr, 0, &opened), ORVEX_OK);
    EXPECT_EQ(type, 8u);
    EXPECT_EQ(opened, 0u);
    EXPECT_THAT(light.requests(), ElementsAre());
    std::uint64_t handle = 0;
    EXPECT_EQ(ORVEX_OpenDevice(&handle, 8, "/dev/ttyACM0", 9600), ORVEX_OK);
    EXPECT_EQ(handle, handles[0]);
}

TEST_F(MainJob, ReadsAMultiLedSourceOut) {
    auto& light = plugTamar();
    const std::uint64_t handle = handleAt(light.port());
    ASSERT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
    const OrvexStruct state = record(handle);
    EXPECT_STREQ(state.szModelName, "Tamar");
    EXPECT_EQ(state.iSerialNumber, 7);
    EXPECT_EQ(state.iCapabilities, 0x30u);
    ASSERT_EQ(state.iNumChannels, 6);
    const std::array<int, 6> wavelengths = {365, 405, 470, 525, 590, 625};
    for (std::size_t k = 0; k < 6; ++k) {
        EXPECT_EQ(state.aChannels[k].iWavelength, wavelengths[k]);
        EXPECT_EQ(state.aChannels[k].iIntensity, 500);
        EXPECT_EQ(state.aChannels[k].iMinIntensity, 50);
        EXPECT_EQ(state.aChannels[k].iTemperature, 30);
        EXPECT_EQ(state.aChannels[k].iState, 0);
    }
    EXPECT_STREQ(state.aChannels[5].szLedName, "625nm");
    EXPECT_THAT(light.requests(),
                ElementsAre("co\r", "lw?\r", "us?\r", "ni?\r", "ip?\r", "gt?\r", "ln?\r", "sn?\r"));
}

TEST_F(MainJob, CarriesCommandsAndReplies) {
    const std::uint64_t handle = open(plugTamar());
    EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
    EXPECT_EQ(reply(handle, "GetUnitSerialNumber"), "TA-7\r");
    EXPECT_EQ(reply(handle, "SetSpeakerVolume", "33"), "\r");
    EXPECT_EQ(reply(handle, "GetSpeakerVolume"), "33\r");
    EXPECT_EQ(reply(handle, "SetSpeakerVolume", "loud"), "80515003");
    EXPECT_EQ(reply(handle, "GetSpeakerVolume"), "33\r");
}

TEST_F(MainJob, CarriesManyExchanges) {
    const std::uint64_t handle = open(plugTamar());
    for (int k = 0; k < 50; ++k) {
        const std::string volume = std::to_string(k % 100);
        ASSERT_EQ(reply(handle, "SetSpeakerVolume", volume.c_str()), "\r");
        ASSERT_EQ(reply(handle, "GetSpeakerVolume"), volume + "\r");
    }
}

TEST_F(MainJob, CarriesTheLongestRequestAndTheLongestReply) {
    auto& light = plugTamar();
    const std::uint64_t handle = open(light);
    const std::string value(1020, '7');
    EXPECT_EQ(reply(handle, "SetSpeakerVolume", value.c_str()), "80515003");
    EXPECT_EQ(light.requests().back(), "vo=" + value + "\r");
    light.addFault(onCommand("GetTemperature"), orvex::sim::endless(1024));
    EXPECT_EQ(reply(handle, "GetTemperature"), std::string(1024, '5'));
    EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
}

/// A new port echoes what it gets until it is raw, and the light takes that for a request.
TEST_F(MainJob, NeedsASecondOpenOfALightThatSpokeWhileItsPortWasClosed) {
    auto& light = plugTamar();
    const std::uint64_t handle = handleAt(light.port());
    light.speak("hello\r");
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_ERR_IO);
    EXPECT_EQ(light.requests().at(0), "hello\r");
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
    EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
}

TEST_F(MainJob, WritesARecord) {
    auto& light = plugTamar();
    const std::uint64_t handle = open(light);
    OrvexStruct state = record(handle);
    state.aChannels[0].iIntensity = 120;
    state.aChannels[1].iState = 1;
    EXPECT_EQ(ORVEX_SetOVStruct(handle, &state), ORVEX_OK);
    EXPECT_EQ(reply(handle, "GetIntensity"), "120,500,500,500,500,500,500,500\r");
    EXPECT_EQ(reply(handle, "GetUnitStatus"), "0,1,0,0,0,0,0,0\r");
}

TEST_F(MainJob, SwitchesTheLight) {
    const std::uint64_t handle = open(plugTamar());
    OrvexStruct state = record(handle);
    state.aChannels[0].iState = 1;
    EXPECT_EQ(ORVEX_SetOVStruct(handle, &state), ORVEX_OK);
    EXPECT_EQ(ORVEX_SwitchOrvex(handle, true, false), ORVEX_OK);
    EXPECT_EQ(reply(handle, "GetUnitStatus"), "0,0,0,0,0,0,0,0\r");
    EXPECT_EQ(ORVEX_SwitchOrvex(handle, true, true), ORVEX_OK);
    EXPECT_EQ(reply(handle, "GetUnitStatus"), "1,0,0,0,0,0,0,0\r");
}

TEST_F(MainJob, WorksALamp) {
    auto& light = plugCedar();
    const std::uint64_t handle = open(light);
    EXPECT_EQ(record(handle).iCapabilities, 0x3u);
    EXPECT_EQ(reply(handle, "GetIntensity"), "50\r");
    EXPECT_EQ(reply(handle, "TurnLampOn"), "\r");
    EXPECT_EQ(reply(handle, "OpenShutter"), "\r");
    EXPECT_EQ(reply(handle, "GetUnitStatus"), "3\r");
    ORVEX_CloseDevice(handle);
    EXPECT_EQ(light.requests().back(), "zz\r");
}

TEST_F(MainJob, ClosesThePortAndPutsItsSettingsBack) {
    auto& light = plugTamar();
    const termios before = settingsOf(light.port());
    EXPECT_NE(before.c_lflag & static_cast<tcflag_t>(ECHO | ICANON), 0u);
    const std::uint64_t handle = open(light);
    const termios during = settingsOf(light.port());
    EXPECT_EQ(during.c_lflag & static_cast<tcflag_t>(ECHO | ICANON | ISIG), 0u);
    EXPECT_EQ(::cfgetospeed(&during), static_cast<speed_t>(B9600));
    ORVEX_CloseDevice(handle);
    EXPECT_EQ(light.requests().back(), "dc\r");
    const termios after = settingsOf(light.port());
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
    EXPECT_EQ(after.c_oflag, before.c_oflag);
    EXPECT_EQ(after.c_cflag, before.c_cflag);
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
    EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
}

}  // namespace
