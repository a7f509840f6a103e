// orvex-sim run: any program with simulated devices that it finds by itself.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tools/common/models.h"
#include "tools/orvex-sim/child.h"
#include "tools/orvex-sim/commands.h"
#include "tools/orvex-sim/device_option.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/scenario.h"
#include "tools/orvex-sim/stage.h"
#include "tools/orvex-sim/supervise.h"
#include "tools/orvex-sim/workspace.h"

namespace orvex::tools {

namespace {

constexpr const char* kExamples = R"(
The devices are /dev/ttyACM0, /dev/ttyACM1, … in their order. Signals are passed on to COMMAND, and
its exit status is orvex-sim's own, 128 + N when signal N ended it.

Examples:
  orvex-sim run --device Tamar -- ./my_program --fast
  orvex-sim run --device Tamar,wavelengths=365/470/empty/625,serial=TA-7 --device Cedar -- ./tests
  orvex-sim run --scenario lab.json --trace lab.trace -- python3 protocol.py)";

struct Options {
    std::vector<std::string> devices;
    std::string scenario;
    std::string trace;
    std::vector<std::string> command;
};

void warnOfUndiscovered(const Posts& posts) {
    for (const auto& post : posts) {
        if (!isDiscovered(post->model())) {
            std::cerr << "orvex-sim: the library knows no USB identifier of " +
                             modelName(post->model()) + ": a scan does not find it; open it at " +
                             post->path() + "\n";
        }
    }
}

Posts makePosts(const Scenario& scenario, sim::Testbed& testbed, TraceWriter* trace,
                const Bell& bell) {
    Posts posts;
    for (const DevicePlan& plan : scenario.devices) {
        const auto number = static_cast<unsigned>(posts.size());
        auto post = std::make_unique<SimulatedPost>(PostSetup{plan, number + 1, trace, &bell});
        post->show(std::make_unique<TestbedPlace>(
            testbed, post->model(), "/dev/ttyACM" + std::to_string(number), post->terminal()));
        posts.push_back(std::move(post));
    }
    return posts;
}

int run(const Options& options) {
    const Scenario scenario = scenarioOf(options.devices, options.scenario);
    const Signals signals;
    const Bell bell;
    const auto trace =
        options.trace.empty() ? nullptr : std::make_unique<TraceWriter>(options.trace);
    const Workspace workspace;
    sim::Testbed testbed;
    Stage stage(signals, bell, makePosts(scenario, testbed, trace.get(), bell), scenario.timeline);
    warnOfUndiscovered(stage.posts());
    stage.begin();
    Child child(options.command,
                childEnvironment(sim::Testbed::preloadLibrary(), workspace.givenTemporaryPlace()),
                signals.before());
    return codeWithTrace(supervise(stage, child), trace.get());
}

}  // namespace

void addRun(CLI::App& app, Action& chosen) {
    CLI::App* command = app.add_subcommand("run", "Run COMMAND with simulated devices attached");
    const auto options = std::make_shared<Options>();
    command->add_option("-d,--device", options->devices, "A device to simulate; may be repeated")
        ->type_name("DEVICE")
        ->allow_extra_args(false);
    command->add_option("--scenario", options->scenario, "Devices and time line from a file")
        ->type_name("FILE");
    command->add_option("--trace", options->trace, "Write the devices' conversations to a file")
        ->type_name("FILE");
    command->add_option("COMMAND", options->command, "The program and its arguments, behind --")
        ->type_name("")
        ->required();
    command->footer(deviceOptionHelp() + kExamples);
    command->callback([options, &chosen] { chosen = [options] { return run(*options); }; });
}

}  // namespace orvex::tools
