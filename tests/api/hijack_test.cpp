// Applications that use the library's exported names for things of their own.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "sim/simulated_device.h"
#include "sim/testbed.h"
#include "tests/support/child_program.h"

namespace {

using ::testing::ElementsAre;

/// Whether the application is linked with the library; it loads it otherwise.
class ApplicationsNames : public ::testing::TestWithParam<bool> {
  protected:
    static std::vector<std::string> command() {
        return {GetParam() ? HIJACK_LINKED_PROGRAM : HIJACK_LOADING_PROGRAM, ORVEX_LIBRARY};
    }
};

TEST_P(ApplicationsNames, AreNotTakenForTheLibrarys) {
    orvex::sim::DeviceSetup setup;
    setup.model = ORVEX_TYPE_CEDAR;
    const orvex::sim::SimulatedDevice device(setup);
    orvex::sim::Testbed testbed;
    testbed.plug(device);
    orvex_test::ChildProgram program(command());
    EXPECT_THAT(
        program.finish(),
        ElementsAre("Send [tt*] ->", " <-Received [*]", "Send [jj*] ->", " <-Received [*]",
                    "Send [uu*] ->", " <-Received [0*]", "Send [ni*] ->", " <-Received [5*]",
                    "Send [dd*] ->", " <-Received [50*]", "Send [gt*] ->", " <-Received [30*]",
                    "Send [vv*] ->", " <-Received [1.4.2*]",
                    "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa0515013): Command <Nothing> is not supported "
                    "for type 2",
                    "Send [zz*] ->", " <-Received [*]", "ORVEX_CloseDevice: 0x0",
                    "Error: ORVEX_OpenDeviceEx: handle was nullptr", "untouched"));
    EXPECT_EQ(program.status(), 0);
}

INSTANTIATE_TEST_SUITE_P(In, ApplicationsNames, ::testing::Bool(), [](const auto& tested) {
    return std::string(tested.param ? "ALinkedProgram" : "ALoadingProgram");
});

}  // namespace
