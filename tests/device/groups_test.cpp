// Channels of which at most one is switched on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/waiting.h"

using orvex::sim::onCommand;
using orvex::sim::scripted;
using orvex_test::cacheOf;
using orvex_test::failureOf;
using orvex_test::groupedReadOut;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

using SlotStates = std::vector<std::pair<int, std::int32_t>>;

const std::string kFourthOn = "0,0,0,1,0,0,0,0\r";
const std::string kSixthOn = "0,0,0,0,0,1,0,0\r";
/// Agrees with everything.
const std::string kNothingReported = "\r";
const std::string kNothingOn = "0,0,0,0,0,0,0,0\r";

/// Eight positions; slots 3, 4 and 5 stand for positions 4, 6 and 7 and share group 1.
class Groups : public testing::Test {
  protected:
    void write(const SlotStates& states) {
        OrvexStruct record = light_.record();
        for (const auto& [slot, state] : states) {
            record.aChannels[slot].iState = state;
        }
        light_.device.setOVStruct(record);
    }

    /// Lets the device report what is switched on.
    void reportStatus(const std::string& reply) { light_.port.replyWith("GetUnitStatus", reply); }

    /// Selects slot 3, and forgets about it.
    void selectSlot3() {
        reportStatus(kFourthOn);
        write({{3, 1}});
        light_.port.clearRecord();
        pauses_.asked.clear();
    }

    std::int32_t stateOf(int slot) { return light_.record().aChannels[slot].iState; }
    std::int32_t selection() { return light_.record().aiGroupSlot[1]; }

    OpenLight light_{ORVEX_TYPE_TAMAR, groupedReadOut()};
    SkippedPauses pauses_;
};

TEST_F(Groups, LetOnlyTheFirstOfTwoStayOn) {
    reportStatus(kFourthOn);
    write({{3, 1}, {4, 1}, {5, 1}});
    EXPECT_EQ(stateOf(3), 1);
    EXPECT_EQ(stateOf(4), 0);
    EXPECT_EQ(stateOf(5), 0);
    EXPECT_EQ(selection(), 3);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,5,6,7,8\r", "on=4\r", "us?\r"));
}

TEST_F(Groups, DoNotConcernOtherChannels) {
    reportStatus(kNothingReported);
    write({{0, 1}, {1, 1}, {2, 1}});
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=4,5,6,7,8\r", "on=1,2,3\r"));
    EXPECT_THAT(pauses_.asked, IsEmpty());
    EXPECT_EQ(selection(), 0);
}

TEST_F(Groups, ChangeTheirSelection) {
    selectSlot3();
    reportStatus(kSixthOn);
    write({{3, 0}, {4, 1}});
    EXPECT_EQ(stateOf(3), 0);
    EXPECT_EQ(stateOf(4), 1);
    EXPECT_EQ(selection(), 4);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,4,5,7,8\r", "on=6\r", "us?\r"));
}

TEST_F(Groups, LeaveAChannelThatTheRecordDoesNotChange) {
    selectSlot3();
    reportStatus("0,0,0,1,0,1,0,0\r");
    write({{4, 1}});
    EXPECT_EQ(stateOf(3), 1);
    EXPECT_EQ(stateOf(4), 1);
    EXPECT_EQ(selection(), 4);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,5,7,8\r", "on=4,6\r", "us?\r"));
}

TEST_F(Groups, KeepTheirSelectionWhenSwitchedOff) {
    selectSlot3();
    write({{3, 0}});
    EXPECT_EQ(selection(), 3);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("of=1,2,3,4,5,6,7,8\r"));
}

TEST_F(Groups, StoreTheWholeStateOfTheSelectionOnly) {
    reportStatus(kSixthOn);
    write({{3, 2}, {4, 5}, {5, 7}});
    EXPECT_EQ(stateOf(3), 0);
    EXPECT_EQ(stateOf(4), 5);
    EXPECT_EQ(stateOf(5), 0);
}

TEST_F(Groups, AreKeptApart) {
    cacheOf(light_.device).aChannels[6].iGroup = 20;
    reportStatus("0,0,0,1,0,0,1,0\r");
    write({{3, 1}, {5, 1}});
    EXPECT_EQ(stateOf(3), 1);
    EXPECT_EQ(stateOf(5), 1);
    EXPECT_EQ(light_.record().aiGroupSlot[1], 3);
    EXPECT_EQ(light_.record().aiGroupSlot[20], 5);
}

TEST_F(Groups, AreAwaitedAfterANewSelection) {
    reportStatus(kFourthOn);
    write({{3, 1}});
    EXPECT_THAT(pauses_.asked, ElementsAre(1800ms, 100ms));
}

TEST_F(Groups, AreNotAwaitedWithTheSameSelection) {
    selectSlot3();
    write({{3, 0}});
    write({{3, 1}});
    EXPECT_THAT(pauses_.asked, IsEmpty());
    EXPECT_THAT(light_.takeRequests(),
                ElementsAre("of=1,2,3,4,5,6,7,8\r", "of=1,2,3,5,6,7,8\r", "on=4\r"));
}

TEST_F(Groups, AreNotAwaitedForTheirFirstSelectionOfSlot0) {
    cacheOf(light_.device).aChannels[0].iGroup = 1;
    reportStatus(kNothingReported);
    write({{0, 1}});
    EXPECT_THAT(pauses_.asked, IsEmpty());
    EXPECT_EQ(selection(), 0);
}

TEST_F(Groups, AreAwaitedOnlyOnce) {
    selectSlot3();
    light_.device.switchInternalOn("4");
    EXPECT_THAT(pauses_.asked, IsEmpty());
    EXPECT_THAT(light_.takeRequests(), ElementsAre("on=4\r"));
}

TEST_F(Groups, AreAskedUntilTheyReportTheSelection) {
    light_.port.addFault(onCommand("GetUnitStatus").nth(1), scripted(kNothingOn));
    light_.port.addFault(onCommand("GetUnitStatus").nth(2), scripted("1,0,0,1,0,0,0,0\r"));
    light_.port.addFault(onCommand("GetUnitStatus").from(3), scripted(kFourthOn));
    write({{3, 1}});
    EXPECT_THAT(pauses_.asked, ElementsAre(1800ms, 100ms, 100ms, 100ms));
    EXPECT_THAT(light_.takeRequests(),
                ElementsAre("of=1,2,3,5,6,7,8\r", "on=4\r", "us?\r", "us?\r", "us?\r"));
}

TEST_F(Groups, AreComparedAsFarAsTheStatusGoes) {
    for (const char* status : {"0,0,0,1\r", "0,0\r", "0\r", "0,0,0,1,0,0,0,0,1,1,1\r", "\r"}) {
        reportStatus(status);
        write({{3, 1}});
        EXPECT_THAT(pauses_.asked, ElementsAre(1800ms, 100ms)) << status;
        light_.device.resetDevice();
        reportStatus(kNothingOn);
        light_.device.initDevice();
        pauses_.asked.clear();
    }
}

TEST_F(Groups, AreComparedAsNumbers) {
    light_.port.addFault(onCommand("GetUnitStatus").nth(1), scripted("0,0,0,2,0,0,0,0\r"));
    light_.port.addFault(onCommand("GetUnitStatus").nth(2), scripted("0,0,0,3,0,0,0,0\r"));
    light_.port.addFault(onCommand("GetUnitStatus").nth(3), scripted("0,0,0,x,0,0,0,0\r"));
    light_.port.addFault(onCommand("GetUnitStatus").from(4), scripted("00,0x,,01,0,0,0,0\r"));
    write({{3, 5}});
    EXPECT_THAT(pauses_.asked, testing::SizeIs(5));
}

TEST_F(Groups, AreLogged) {
    reportStatus(kFourthOn);
    const LogCapture log;
    write({{3, 1}});
    EXPECT_THAT(log.lines(),
                ElementsAre("LightDevice::executeString: TurnLedOff", "Send [of=1,2,3,5,6,7,8*] ->",
                            " <-Received [ok*]",
                            "LightDevice::executeString: TurnLedOn",  //
                            "Send [on=4*] ->", " <-Received [ok*]",
                            "LightDevice::executeString: GetUnitStatus", "Send [us?*] ->",
                            " <-Received [0,0,0,1,0,0,0,0*]", "LightDevice::switchInternalOn done!",
                            "switchInternalOn: succeed."));
}

TEST_F(Groups, LogTheirEndAsInformation) {
    reportStatus(kFourthOn);
    const LogCapture log(0x20);
    write({{3, 1}});
    EXPECT_THAT(log.lines(), ElementsAre("switchInternalOn: succeed."));
}

TEST_F(Groups, AreAwaitedLaterWhenSwitchingOnIsRefused) {
    reportStatus(kFourthOn);
    light_.port.addFault(onCommand("TurnLedOn").nth(1), orvex::sim::errorReply());
    EXPECT_EQ(failureOf([&] { write({{3, 1}}); }).first, 0x80515003);
    EXPECT_THAT(pauses_.asked, IsEmpty());
    light_.device.switchInternalOn("4");
    EXPECT_THAT(pauses_.asked, ElementsAre(1800ms, 100ms));
}

TEST_F(Groups, AreAwaitedAgainWhenTheStatusIsRefused) {
    light_.port.addFault(onCommand("GetUnitStatus").nth(1), orvex::sim::errorReply());
    light_.port.addFault(onCommand("GetUnitStatus").from(2), scripted(kFourthOn));
    EXPECT_EQ(failureOf([&] { write({{3, 1}}); }).first, 0x80515003);
    pauses_.asked.clear();
    light_.device.switchInternalOn("4");
    EXPECT_THAT(pauses_.asked, ElementsAre(1800ms, 100ms));
}

TEST_F(Groups, AreAwaitedWhenTheSelectionIsSwitchedOn) {
    reportStatus(kFourthOn);
    light_.device.switchOrvex(true, false);
    write({{3, 1}});
    EXPECT_THAT(pauses_.asked, IsEmpty());
    light_.device.switchOrvex(true, true);
    EXPECT_THAT(pauses_.asked, ElementsAre(1800ms, 100ms));
}

TEST(GroupsInTime, AreAwaitedUntilTheDeviceHasSettled) {
    orvex::sim::DeviceSetup setup;
    setup.model = ORVEX_TYPE_WILLOW;
    setup.settleDelay = 2100ms;
    orvex::sim::SimulatedDevice port(setup);
    LightDevice device(ORVEX_TYPE_WILLOW, port.path());
    device.openConnection(9600);
    OrvexStruct record{};
    device.getOVStruct(record);
    record.aChannels[4].iState = 1;
    port.clearRecord();
    EXPECT_THAT(orvex_test::timeTaken([&] { device.setOVStruct(record); }), Ge(2100ms));
    EXPECT_TRUE(port.state().channels[4].on);
    EXPECT_THAT(port.requests().size(), Ge(4U));
}

}  // namespace
