// ORVEX_SwitchOrvex.
#include <gmock/gmock.h>

#include <cstdint>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SwitchOrvex : public orvex_test::AttachedDevices {
  protected:
    static Setup twoLeds() {
        Setup setup;
        setup.wavelengths = {365, 470};
        return setup;
    }

    /// Switches the second LED on by a record.
    static void switchSecondOn(std::uint64_t handle) {
        OrvexStruct record{};
        record.iSize = 2008;
        EXPECT_EQ(api().GetOVStruct(handle, &record), 0u);
        record.aChannels[1].iState = 1;
        EXPECT_EQ(api().SetOVStruct(handle, &record), 0u);
    }
};

TEST_F(SwitchOrvex, RefusesAnUnknownHandleWithoutAWord) {
    for (const bool enable : {false, true}) {
        EXPECT_EQ(api().SwitchOrvex(0x1234, enable, true), 0xA0515007u);
        EXPECT_EQ(api().SwitchOrvex(0, enable, false), 0xA0515007u);
    }
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(SwitchOrvex, SendsNothingWhileItIsNotEnabled) {
    const Device& device = attach(twoLeds());
    const std::uint64_t handle = open();
    switchSecondOn(handle);
    EXPECT_THAT(device.requests(), ElementsAre("of=1\r", "on=2\r"));
    EXPECT_EQ(api().SwitchOrvex(handle, false, false), 0u);
    EXPECT_EQ(api().SwitchOrvex(handle, false, true), 0u);
    EXPECT_THAT(device.requests(), ElementsAre("of=1\r", "on=2\r"));
}

TEST_F(SwitchOrvex, HasNothingToSwitchOnBeforeARecordDid) {
    const Device& device = attach(twoLeds());
    const std::uint64_t handle = open();
    EXPECT_EQ(api().SwitchOrvex(handle, true, true), 0u);
    EXPECT_EQ(device.received(), "");
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(SwitchOrvex, SwitchesAllOffAndTheLastOnesOn) {
    const Device& device = attach(twoLeds());
    const std::uint64_t handle = open();
    switchSecondOn(handle);
    log.restart(0x20);
    EXPECT_EQ(api().SwitchOrvex(handle, true, false), 0u);
    EXPECT_FALSE(device.state().channels.at(1).on);
    EXPECT_EQ(api().SwitchOrvex(handle, true, true), 0u);
    EXPECT_TRUE(device.state().channels.at(1).on);
    EXPECT_THAT(log.take(),
                ElementsAre("switchInternalOff: succeed.", "switchInternalOn: succeed."));
    EXPECT_THAT(device.requests(), ElementsAre("of=1\r", "on=2\r", "of=1,2\r", "on=2\r"));
}

TEST_F(SwitchOrvex, OnlyRemembersARecordsChannelsWhileOff) {
    const Device& device = attach(twoLeds());
    const std::uint64_t handle = open();
    EXPECT_EQ(api().SwitchOrvex(handle, true, false), 0u);
    switchSecondOn(handle);
    EXPECT_THAT(device.requests(), ElementsAre("of=1,2\r", "of=1\r"));
    EXPECT_EQ(api().SwitchOrvex(handle, true, true), 0u);
    EXPECT_THAT(device.requests(), ElementsAre("of=1,2\r", "of=1\r", "on=2\r"));
}

TEST_F(SwitchOrvex, ClosesALampsShutter) {
    Device& device = attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    device.change([](auto& state) { state.shutterOpen = true; });
    EXPECT_EQ(api().SwitchOrvex(handle, true, false), 0u);
    EXPECT_THAT(device.requests(), ElementsAre("zz\r"));
    EXPECT_FALSE(device.state().shutterOpen);
}

TEST_F(SwitchOrvex, ReturnsTheCodeOfAFailure) {
    Device& device = attach(twoLeds());
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onCommand("TurnLedOff"), orvex::sim::errorReply());
    log.restart(0x1);
    EXPECT_EQ(api().SwitchOrvex(handle, true, false), 0x80515003u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: ORVEX_SwitchOrvex: failed. Exception: "
                            "DriverException (0x80515003): LightDevice::executeString: Command "
                            "\"of=1,2\" answered with error \"e\\r\""));
}

TEST_F(SwitchOrvex, NeedsAnOpenDeviceToSendSomething) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = scan().at(0);
    log.restart(0x1);
    EXPECT_EQ(api().SwitchOrvex(handle, false, true), 0u);
    EXPECT_EQ(api().SwitchOrvex(handle, true, true), 0u);
    EXPECT_THAT(log.take(), IsEmpty());
    EXPECT_EQ(api().SwitchOrvex(handle, true, false), 0x80517006u);
    EXPECT_THAT(log.take(),
                ElementsAre("Error: LightDevice::executeString: LightDevice is not connected.",
                            "Error: ORVEX_SwitchOrvex: failed. Exception: "
                            "DriverException (0x80517006) "));
}

}  // namespace
