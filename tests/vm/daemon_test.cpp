// A process that leads a session without a terminal: the port that the library opens becomes its
// controlling terminal.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/vm/usb_lights.h"

namespace {

using orvex_test::UsbLight;

class Daemon : public orvex_test::UsbLights {
  protected:
    /// How a daemon ends that opens the light and has it unplugged.
    static int endOf(UsbLight& light, void (*onHangUp)(int)) {
        const pid_t daemon = ::fork();
        if (daemon == 0) {
            ::_exit(lifeOf(light, onHangUp));
        }
        int status = -1;
        EXPECT_EQ(::waitpid(daemon, &status, 0), daemon);
        return status;
    }

  private:
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
    const int status = endOf(plugTamar(), SIG_DFL);
    EXPECT_TRUE(WIFSIGNALED(status)) << status;
    EXPECT_EQ(WTERMSIG(status), SIGHUP);
}

TEST_F(Daemon, GoesOnWhenItIgnoresTheSignal) {
    const int status = endOf(plugTamar(), SIG_IGN);
    EXPECT_TRUE(WIFEXITED(status)) << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
