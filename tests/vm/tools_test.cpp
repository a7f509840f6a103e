// The command-line tool on the kernel's own driver.
#include "tests/vm/outcome.h"
#include "tests/vm/usb_lights.h"

namespace {

using orvex_test::ChildProgram;
using orvex_test::Outcome;
using orvex_test::run;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Tool : public orvex_test::UsbLights {};

TEST_F(Tool, ListsTheLightsWithTheirUsbSerialNumbers) {
    plugTamar();
    plugCedar();
    const Outcome outcome = run({ORVEXCTL, "list"});
    EXPECT_EQ(outcome.output,
              "#  MODEL  PORT          SERIAL  STATE\n"
              "1  Tamar  /dev/ttyACM0  TA-7    free\n"
              "2  Cedar  /dev/ttyACM1  -       free\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST_F(Tool, ShowsAndChangesALight) {
    const auto& light = plugTamar();
    EXPECT_EQ(run({ORVEXCTL, "set", "1=12"}).status, 0);
    EXPECT_THAT(light.requests(), ::testing::Contains("ip=120,500,0,500,500,500,500,0"));
    const Outcome outcome = run({ORVEXCTL, "info"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Tamar on /dev/ttyACM0\n"));
    EXPECT_THAT(outcome.output, HasSubstr("365 nm     12.0 %"));
}

TEST_F(Tool, TellsWhoHoldsAPort) {
    const auto& light = plugTamar();
    open(light);
    const Outcome outcome = run({ORVEXCTL, "doctor"});
    EXPECT_EQ(outcome.status, 5);
    EXPECT_THAT(outcome.output, HasSubstr("held by vm_test (process "));
}

TEST_F(Tool, SeesLightsComeAndGo) {
    auto& light = plugTamar();
    ChildProgram watch({ORVEXCTL, "list", "--watch"});
    EXPECT_THAT(watch.linesUntil("+ Tamar on /dev/ttyACM0"), ElementsAre());
    light.unplug();
    EXPECT_THAT(watch.linesUntil("- Tamar on /dev/ttyACM0 is gone"), ElementsAre());
    light.plug();
    EXPECT_THAT(watch.linesUntil("+ Tamar on /dev/ttyACM0"), ElementsAre());
}

TEST_F(Tool, EndsWhenTheLightIsUnpluggedDuringACommand) {
    auto& light =
        plugTamar(R"({"fault": "late", "delayMs": 60000, "command": "GetSpeakerVolume"})");
    ChildProgram program({ORVEXCTL, "exec", "GetSpeakerVolume"});
    EXPECT_TRUE(light.awaitRequest("vo?"));
    light.pull();
    EXPECT_THAT(program.finish(), ::testing::Contains(HasSubstr("/dev/ttyACM0")));
    EXPECT_EQ(program.status(), 7);
}

}  // namespace
