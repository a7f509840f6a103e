// orvex-sim replay: devices that answer from a trace.
#include <iostream>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "tools/common/models.h"
#include "tools/orvex-sim/child.h"
#include "tools/orvex-sim/commands.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/place.h"
#include "tools/orvex-sim/replayed_device.h"
#include "tools/orvex-sim/supervise.h"
#include "tools/orvex-sim/workspace.h"

namespace orvex::tools {

namespace {

constexpr const char* kExamples = R"(
Devices answer as TRACE recorded it as long as a client asks as TRACE recorded it. Where it asks for
something else, or ends early, its departure is told with the line of TRACE, and the exit code is 5;
from there on the device answers with its error reply.

Examples:
  orvex-sim run --device Tamar --trace light.trace -- ./my_program
  orvex-sim replay light.trace -- ./my_program
  orvex-sim replay light.trace --link /tmp/ttyReplay)";

struct Options {
    std::string trace;
    std::vector<std::string> links;
    std::vector<std::string> command;
};

using Devices = std::vector<std::unique_ptr<ReplayedDevice>>;
using Places = std::vector<std::unique_ptr<Place>>;

void check(const Options& options, const std::vector<TraceDevice>& devices) {
    if (options.links.empty() == options.command.empty()) {
        throw Failure(kBadInput, "replay needs either --link or a COMMAND behind --");
    }
    if (!options.links.empty() && options.links.size() != devices.size()) {
        throw Failure(kBadInput, options.trace + " tells of " + std::to_string(devices.size()) +
                                     " devices, but --link is given " +
                                     std::to_string(options.links.size()) + " times");
    }
    requireFreeLinks(options.links);
}

Devices makeDevices(const std::string& path, const std::vector<TraceDevice>& recorded) {
    Devices devices;
    for (const TraceDevice& device : recorded) {
        devices.push_back(std::make_unique<ReplayedDevice>(
            path, device,
            [](const std::string& text) { std::cerr << "orvex-sim: " + text + "\n"; }));
    }
    return devices;
}

/// The port on which a device was recorded, if it was one of udev's.
std::string portOf(const TraceDevice& device) {
    static const std::regex port("/dev/ttyACM[0-9]{1,3}");
    return std::regex_match(device.path, port) ? device.path
                                               : "/dev/ttyACM" + std::to_string(device.number - 1);
}

int status(const Devices& devices, int otherwise) {
    bool kept = true;
    for (const auto& device : devices) {
        kept = device->finish() && kept;
    }
    return kept ? otherwise : kDeparted;
}

int replayFor(const Options& options, const Signals& signals, const Workspace& workspace,
              const Devices& devices) {
    sim::Testbed testbed;
    Places places;
    for (const auto& device : devices) {
        places.push_back(std::make_unique<TestbedPlace>(
            testbed, device->device().model, portOf(device->device()), device->terminal()));
        places.back()->appear();
    }
    Child child(options.command,
                childEnvironment(sim::Testbed::preloadLibrary(), workspace.givenTemporaryPlace()),
                signals.before());
    const Bell bell;
    Stage stage(signals, bell, {}, {});
    return supervise(stage, child);
}

int replayAt(const Options& options, const Signals& signals, const Devices& devices) {
    Places places;
    for (std::size_t k = 0; k < devices.size(); ++k) {
        places.push_back(std::make_unique<LinkPlace>(options.links[k], devices[k]->terminal()));
    }
    for (std::size_t k = 0; k < devices.size(); ++k) {
        std::cout << modelName(devices[k]->device().model) << " at " << places[k]->path()
                  << std::endl;
    }
    const Bell bell;
    Stage stage(signals, bell, {}, {});
    while (!asksToEnd(stage.next().number)) {
    }
    return kDone;
}

int replay(const Options& options) {
    const std::vector<TraceDevice> recorded = readTrace(options.trace);
    check(options, recorded);
    const Signals signals;
    const Workspace workspace;
    const Devices devices = makeDevices(options.trace, recorded);
    const int code = options.command.empty() ? replayAt(options, signals, devices)
                                             : replayFor(options, signals, workspace, devices);
    return status(devices, code);
}

}  // namespace

void addReplay(CLI::App& app, Action& chosen) {
    CLI::App* command = app.add_subcommand("replay", "Answer from a recorded trace");
    const auto options = std::make_shared<Options>();
    command->add_option("TRACE", options->trace, "What run or serve wrote with --trace")
        ->type_name("")
        ->required();
    command->add_option("--link", options->links, "Make this link to a device's port; in order")
        ->type_name("PATH")
        ->allow_extra_args(false);
    command->add_option("COMMAND", options->command, "The program and its arguments, behind --")
        ->type_name("");
    command->footer(kExamples);
    command->callback([options, &chosen] { chosen = [options] { return replay(*options); }; });
}

}  // namespace orvex::tools
