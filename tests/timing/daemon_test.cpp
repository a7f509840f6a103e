// Programs without a terminal: their port becomes one to them, unless they see to it.
#include <gmock/gmock.h>
#include <signal.h>

#include <memory>
#include <string>
#include <vector>

#include "sim/simulated_device.h"
#include "tests/support/child_program.h"

namespace {

using testing::ElementsAre;

class Daemon : public testing::Test {
  protected:
    static constexpr int kEndedByHangUp = 128 + SIGHUP;

    void start(const char* kind) {
        program_ = std::make_unique<orvex_test::ChildProgram>(
            std::vector<std::string>{DAEMON_PROGRAM, kind, device_.path()});
    }
    /// Its answer; nothing when it has ended.
    std::string answerTo(const std::string& order) {
        program_->say(order);
        return program_->nextLine();
    }
    /// Opens the device, talks to it, and has it pulled out.
    void usePulledOut() {
        ASSERT_EQ(answerTo("open"), "0");
        ASSERT_EQ(answerTo("command"), "0");
        device_.hangUp();
    }
    /// The device is there again: the program gives up what it has and opens it anew.
    void expectReturn() {
        EXPECT_EQ(answerTo("command"), "80515003");
        device_.plugIn();
        EXPECT_EQ(answerTo("command"), "80515003");
        EXPECT_EQ(answerTo("close"), "0");
        EXPECT_EQ(answerTo("open"), "0");
        EXPECT_EQ(answerTo("command"), "0");
        EXPECT_EQ(answerTo("close"), "0");
    }

    orvex::sim::SimulatedDevice device_{orvex::sim::DeviceSetup{}};
    std::unique_ptr<orvex_test::ChildProgram> program_;
};

TEST_F(Daemon, GetsItsPortAsItsTerminal) {
    start("leader");
    EXPECT_EQ(answerTo("terminal"), "no terminal");
    EXPECT_EQ(answerTo("open"), "0");
    EXPECT_EQ(answerTo("terminal"), "a terminal");
}

TEST_F(Daemon, IsEndedWhenItsDeviceIsPulledOut) {
    start("leader");
    usePulledOut();
    EXPECT_THAT(program_->finish(), testing::IsEmpty());
    EXPECT_EQ(program_->status(), kEndedByHangUp);
}

TEST_F(Daemon, LivesOnWhenItIgnoresTheSignal) {
    start("ignoring");
    usePulledOut();
    EXPECT_EQ(answerTo("terminal"), "no terminal");
    expectReturn();
}

TEST_F(Daemon, LivesOnWhenItHandlesTheSignal) {
    start("handling");
    usePulledOut();
    EXPECT_EQ(answerTo("hang-ups"), "1");
    expectReturn();
    EXPECT_EQ(answerTo("hang-ups"), "1");
}

TEST_F(Daemon, IsNotConcernedWhenItDoesNotLeadItsSession) {
    start("follower");
    EXPECT_EQ(answerTo("open"), "0");
    EXPECT_EQ(answerTo("terminal"), "no terminal");
    device_.hangUp();
    expectReturn();
}

TEST_F(Daemon, IsNotConcernedWhenItHasAnotherTerminal) {
    start("terminal");
    EXPECT_EQ(answerTo("terminal"), "a terminal");
    usePulledOut();
    EXPECT_EQ(answerTo("terminal"), "a terminal");
    expectReturn();
}

// A port on descriptor 1 or 2 would be sent whatever the program prints.
TEST_F(Daemon, PrintsNothingToItsDeviceWithoutStandardOutput) {
    start("closed");
    EXPECT_EQ(answerTo("open"), "0");
    EXPECT_EQ(answerTo("command"), "0");
    device_.clearRecord();
    EXPECT_EQ(answerTo("print"), "0");
    EXPECT_EQ(answerTo("command"), "0");
    EXPECT_EQ(answerTo("print"), "0");
    EXPECT_EQ(answerTo("close"), "0");
    EXPECT_EQ(device_.received(), "sn?\rdc\r");
}

}  // namespace
