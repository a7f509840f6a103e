// Runs a program in a world with two simulated light sources: a Tamar with 8 positions and a Cedar.
//
//   with_simulated_lights PROGRAM [ARGUMENT…]
//
// The program and everything it starts finds them through udev as if they were attached. Its exit
// status is passed on.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <string>

#include "sim/simulated_device.h"
#include "sim/testbed.h"

namespace {

orvex::sim::DeviceSetup tamar() {
    orvex::sim::DeviceSetup setup;
    setup.model = ORVEX_TYPE_TAMAR;
    setup.wavelengths = {365, 385, 405, 470, 525, 590, ORVEX_EMPTY_POSITION, 635};
    setup.names = {"UV", "UV-A", "VIOLET", "BLUE", "GREEN", "AMBER", "", "RED"};
    setup.temperatures = {31, 31, 32, 34, 33, 30, 0, 29};
    setup.serialText = "TA-0815";
    setup.settleDelay = std::chrono::milliseconds(500);
    return setup;
}

orvex::sim::DeviceSetup cedar() {
    orvex::sim::DeviceSetup setup;
    setup.model = ORVEX_TYPE_CEDAR;
    setup.lampHours = 1250;
    setup.temperatures = {38};
    return setup;
}

int run(char** command) {
    pid_t child = 0;
    const int failed = ::posix_spawnp(&child, command[0], nullptr, nullptr, command, environ);
    if (failed != 0) {
        std::cerr << "with_simulated_lights: cannot start " << command[0] << ": "
                  << std::strerror(failed) << "\n";
        return 127;
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: with_simulated_lights PROGRAM [ARGUMENT...]\n";
        return 2;
    }
    try {
        orvex::sim::SimulatedDevice first(tamar());
        orvex::sim::SimulatedDevice second(cedar());
        orvex::sim::Testbed world;
        world.plug(first);
        world.plug(second);
        ::setenv("LD_PRELOAD", orvex::sim::Testbed::preloadLibrary().c_str(), 1);
        return run(argv + 1);
    } catch (const std::exception& e) {
        std::cerr << "with_simulated_lights: " << e.what() << "\n";
        return 1;
    }
}
