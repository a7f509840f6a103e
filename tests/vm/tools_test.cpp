// The command-line tool on the kernel's own driver.
#include "tests/support/child_program.h"
#include "tests/vm/outcome.h"
#include "tests/vm/usb_lights.h"

namespace {

using orvex_test::ChildProgram;
using orvex_test::Outcome;
using orvex_test::run;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Tool : public orvex_test::UsbLights {
  protected:
    /// Plugs a light in and opens it.
    static std::uint64_t openAfter(orvex_test::Gadget& gadget) {
        gadget.plug();
        const std::uint64_t handle = handleAt(gadget.port());
        EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
        return handle;
    }
};

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
    const Outcome change = run({ORVEXCTL, "set", "1=12%"});
    EXPECT_EQ(change.status, 0) << change.output;
    EXPECT_THAT(light.requests(), ::testing::Contains("ip=120,500,500,500,500,500,500,500\r"));
    const Outcome outcome = run({ORVEXCTL, "info"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Tamar on /dev/ttyACM0\n"));
    EXPECT_THAT(outcome.output, HasSubstr("365 nm     12.0 %"));
}

TEST_F(Tool, TellsWhoHoldsAPort) {
    auto& light = plugTamar();
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
    auto& light = plugTamar();
    light.addFault(orvex::sim::onCommand("GetSpeakerVolume"),
                   orvex::sim::delayed(std::chrono::minutes(1)));
    ChildProgram program({ORVEXCTL, "exec", "GetSpeakerVolume"});
    EXPECT_TRUE(light.awaitRequest("vo?\r"));
    light.pull();
    EXPECT_THAT(program.finish(), ::testing::Contains(HasSubstr("/dev/ttyACM0")));
    EXPECT_EQ(program.status(), 7);
}

/// The simulator that users play a light with on their own gadget.
TEST_F(Tool, PlaysALightOnAGadgetAndGoesOnAfterUnplugging) {
    orvex_test::Gadget gadget(0, orvex_test::kTamar);
    ChildProgram simulator(
        {ORVEX_SIM, "serve", "--device", "Tamar,serial=TA-9", "--tty", gadget.deviceSide()});
    EXPECT_THAT(simulator.linesUntil("Tamar at " + gadget.deviceSide()), ElementsAre());
    const std::uint64_t handle = openAfter(gadget);
    EXPECT_EQ(reply(handle, "GetUnitSerialNumber"), "TA-9\r");
    EXPECT_EQ(reply(handle, "SetSpeakerVolume", "33"), "\r");
    gadget.unplug();
    EXPECT_EQ(reply(openAfter(gadget), "GetSpeakerVolume"), "33\r");
    gadget.pull();
}

}  // namespace
