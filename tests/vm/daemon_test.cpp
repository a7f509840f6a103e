// A process that leads a session without a terminal: the port that the library opens becomes its
// controlling terminal.
#include <signal.h>
#include <unistd.h>

#include "tests/vm/usb_lights.h"

namespace {

using orvex_test::UsbLight;

class Daemon : public orvex_test::UsbLights {
  protected:
    /// Becomes a daemon, opens the light, and has it unplugged. @return the exit status
    static int lifeOf(UsbLight& light, void (*onHangUp)(int)) {
        ::setsid();
        ::signal(SIGHUP, onHangUp);
        const std::uint64_t handle = open(light);
        if (reply(handle, "GetSoftwareVersion") != "1.4.2\r") {
            return 1;
        }
        light.unplug();
        return reply(handle, "GetSoftwareVersion") == "80515003" ? 0 : 2;
    }
};

TEST_F(Daemon, IsEndedByTheHangUpSignalOfTheUnpluggedPort) {
    UsbLight& light = plugTamar();
    EXPECT_EXIT(::_exit(lifeOf(light, SIG_DFL)), ::testing::KilledBySignal(SIGHUP), "");
}

TEST_F(Daemon, GoesOnWhenItIgnoresTheSignal) {
    UsbLight& light = plugTamar();
    EXPECT_EXIT(::_exit(lifeOf(light, SIG_IGN)), ::testing::ExitedWithCode(0), "");
}

}  // namespace
