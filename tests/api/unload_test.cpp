// The library's end with devices still open, in a C program that is not linked with it.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "sim/simulated_device.h"
#include "sim/testbed.h"
#include "tests/support/child_program.h"
#include "tests/support/temporary_directory.h"

namespace {

using orvex_test::ChildProgram;
using orvex_test::contentsOf;
using orvex_test::TemporaryDirectory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kDeadPort =
    "Error: SerialLink::disconnect: set tty attributes. Error 5 from tcsetattr: Input/output error";

class Unload : public ::testing::Test {
  protected:
    Unload() { testbed.plug(device); }

    static std::vector<std::string> command(const std::string& sink, const std::string& end) {
        return {UNLOAD_PROGRAM, ORVEX_LIBRARY, sink, end};
    }

    /// Lets the program open the device.
    void awaitOpen(ChildProgram& program) {
        EXPECT_THAT(program.linesUntil("open"), IsEmpty());
        device.clearRecord();
    }

    orvex::sim::SimulatedDevice device{{}};
    orvex::sim::Testbed testbed;
};

TEST_F(Unload, ReleasesAnOpenDeviceWithoutARequest) {
    ChildProgram program(command("callback", "dlclose"));
    awaitOpen(program);
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre("closed"));
    EXPECT_EQ(program.status(), 0);
    EXPECT_EQ(device.received(), "");
}

TEST_F(Unload, LogsADeadPortToTheCallback) {
    ChildProgram program(command("callback", "dlclose"));
    awaitOpen(program);
    device.hangUp();
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre(kDeadPort, "closed"));
    EXPECT_EQ(program.status(), 0);
}

TEST_F(Unload, LogsADeadPortToTheFile) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("a log whose name is too long to be kept within it");
    ChildProgram program(command(file, "dlclose"));
    awaitOpen(program);
    device.hangUp();
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre("closed"));
    EXPECT_EQ(program.status(), 0);
    EXPECT_EQ(contentsOf(file), std::string(kDeadPort) + "\n");
}

TEST_F(Unload, LogsADeadPortToStandardError) {
    ChildProgram program(command("stdout", "dlclose"));
    awaitOpen(program);
    device.hangUp();
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre(kDeadPort, "closed"));
    EXPECT_EQ(program.status(), 0);
}

TEST_F(Unload, ReleasesADeviceWhoseReadOutFailed) {
    device.addFault(orvex::sim::onCommand("GetTemperature"), orvex::sim::silence());
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    ChildProgram program(command(file, "readout"));
    awaitOpen(program);
    device.hangUp();
    const std::string before = contentsOf(file);
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre("closed"));
    EXPECT_EQ(program.status(), 0);
    EXPECT_EQ(contentsOf(file), before + kDeadPort + "\n");
}

class EndOfProcess : public Unload, public ::testing::WithParamInterface<const char*> {};

TEST_P(EndOfProcess, ReleasesAnOpenDeviceWithoutARequest) {
    ChildProgram program(command("callback", GetParam()));
    awaitOpen(program);
    program.say("go");
    EXPECT_THAT(program.finish(), IsEmpty());
    EXPECT_EQ(program.status(), 0);
    EXPECT_EQ(device.received(), "");
}

TEST_P(EndOfProcess, LogsADeadPortToTheCallback) {
    ChildProgram program(command("callback", GetParam()));
    awaitOpen(program);
    device.hangUp();
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre(kDeadPort));
    EXPECT_EQ(program.status(), 0);
}

TEST_P(EndOfProcess, LogsADeadPortToTheFile) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    ChildProgram program(command(file, GetParam()));
    awaitOpen(program);
    device.hangUp();
    program.say("go");
    EXPECT_THAT(program.finish(), IsEmpty());
    EXPECT_EQ(program.status(), 0);
    EXPECT_EQ(contentsOf(file), std::string(kDeadPort) + "\n");
}

TEST_P(EndOfProcess, LogsADeadPortToStandardError) {
    ChildProgram program(command("stdout", GetParam()));
    awaitOpen(program);
    device.hangUp();
    program.say("go");
    EXPECT_THAT(program.finish(), ElementsAre(kDeadPort));
    EXPECT_EQ(program.status(), 0);
}

INSTANTIATE_TEST_SUITE_P(By, EndOfProcess, ::testing::Values("return", "exit"),
                         [](const auto& tested) { return std::string(tested.param); });

}  // namespace
