// A light that is unplugged and plugged in again: under which name, and what old handles are worth.
#include "tests/vm/usb_lights.h"

namespace {

using orvex::sim::onCommand;
using orvex_test::UsbLight;
using ::testing::ElementsAre;
using ::testing::SizeIs;

class Replugging : public orvex_test::UsbLights {};

TEST_F(Replugging, GivesTheOldNameAgainWhenNobodyHoldsThePort) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    ORVEX_CloseDevice(handle);
    light.unplug();
    light.plug();
    EXPECT_EQ(light.port(), "/dev/ttyACM0");
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
    EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
}

TEST_F(Replugging, WithAScanInBetweenGivesTheOldNameToANewHandle) {
    UsbLight& light = plugTamar();
    open(light);
    light.unplug();
    EXPECT_THAT(scan(), SizeIs(0));
    light.plug();
    EXPECT_EQ(light.port(), "/dev/ttyACM0");
    EXPECT_EQ(reply(open(light), "GetSoftwareVersion"), "1.4.2\r");
}

TEST_F(Replugging, GivesAnotherNameWhileTheOldPortIsHeld) {
    UsbLight& light = plugTamar();
    const std::uint64_t old = open(light);
    light.unplug();
    light.plug();
    EXPECT_EQ(light.port(), "/dev/ttyACM1");
    EXPECT_EQ(reply(old, "GetSoftwareVersion"), "80515003");
    EXPECT_EQ(ORVEX_OpenDeviceEx(old), ORVEX_OK);
    EXPECT_EQ(reply(old, "GetSoftwareVersion"), "80515003");
    EXPECT_EQ(reply(open(light), "GetSoftwareVersion"), "1.4.2\r");
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(Replugging, GivesTheFirstNameAgainOnceItIsLetGo) {
    UsbLight& light = plugTamar();
    open(light);
    light.unplug();
    light.plug();
    const std::uint64_t second = open(light);
    ORVEX_CloseDevice(second);
    light.unplug();
    light.plug();
    EXPECT_EQ(light.port(), "/dev/ttyACM0");
    EXPECT_EQ(reply(open(light), "GetSoftwareVersion"), "1.4.2\r");
}

TEST_F(Replugging, DuringACommandLeavesTheLightUsableUnderItsNewName) {
    UsbLight& light = plugTamar();
    const std::uint64_t old = open(light);
    light.addFault(onCommand("GetTemperature").nth(1), orvex::sim::silence());
    EXPECT_EQ(reply(old, "GetTemperature"), "a0515019");
    light.unplug();
    light.plug();
    EXPECT_EQ(reply(open(light), "GetTemperature"), "30,30,30,30,30,30,30,30\r");
}

TEST_F(Replugging, AgainAndAgainLosesNothing) {
    UsbLight& light = plugTamar();
    for (int k = 0; k < 4; ++k) {
        const std::uint64_t handle = open(light);
        EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "1.4.2\r");
        light.unplug();
        EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "80515003");
        light.plug();
    }
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(Replugging, ADifferentModelUnderTheOldNameNeedsAScanInBetween) {
    UsbLight& tamar = plugTamar();
    const std::uint64_t handle = open(tamar);
    ORVEX_CloseDevice(handle);
    tamar.unplug();
    const UsbLight& cedar = plugCedar();
    ASSERT_EQ(cedar.port(), tamar.port());
    std::uint32_t type = 0;
    EXPECT_THAT(scan(), ElementsAre(handle));
    EXPECT_EQ(ORVEX_GetDeviceInfo(handle, &type, nullptr, 0, nullptr), ORVEX_OK);
    EXPECT_EQ(type, ORVEX_TYPE_TAMAR);
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_ERR_IO);
}

}  // namespace
