// orvex-sim serve: simulated ports in the foreground.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/common/models.h"
#include "tools/orvex-sim/commands.h"
#include "tools/orvex-sim/device_option.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/line_post.h"
#include "tools/orvex-sim/scenario.h"
#include "tools/orvex-sim/stage.h"
#include "tools/orvex-sim/workspace.h"

namespace orvex::tools {

namespace {

constexpr const char* kExamples = R"(
The first device takes the first --link or --tty, the second the second, and so on; a device
without one is to be found where its line of output says. Ends with Ctrl-C or SIGTERM; exit code 0
then.

Examples:
  orvex-sim serve --device Willow --link /tmp/ttyWillow
  orvex-sim serve --device Tamar,serial=TA-7 --link /tmp/ttyA --device Cedar --link /tmp/ttyB
  orvex-sim serve --device Tamar --tty /dev/ttyGS0
  orvex-sim serve --scenario lab.json --link /tmp/ttyLab --trace lab.trace)";

struct Port {
    std::string path;
    bool isLine = false;  ///< An existing terminal, not a link to be made.
};

struct Options {
    std::vector<std::string> devices;
    std::vector<Port> ports;
    std::string scenario;
    std::string trace;
};

/// Everything that can be known to fail before anything is begun.
void check(const Options& options, const Scenario& scenario) {
    if (options.ports.size() > scenario.devices.size()) {
        throw Failure(kBadInput, options.ports[scenario.devices.size()].path +
                                     ": there are more ports than devices");
    }
    std::vector<std::string> links;
    for (const Port& port : options.ports) {
        if (port.isLine) {
            static_cast<void>(TerminalLine(port.path));
        } else {
            links.push_back(port.path);
        }
    }
    requireFreeLinks(links);
}

std::unique_ptr<Post> makePost(const PostSetup& setup, const std::optional<Port>& port) {
    if (port && port->isLine) {
        return std::make_unique<LinePost>(setup, port->path);
    }
    auto post = std::make_unique<SimulatedPost>(setup);
    if (port) {
        post->show(std::make_unique<LinkPlace>(port->path, post->terminal()));
    } else {
        post->show(std::make_unique<BarePlace>(post->terminal()));
    }
    return post;
}

void announce(const Posts& posts) {
    for (const auto& post : posts) {
        std::cout << modelName(post->model()) << " at " << post->path() << std::endl;
        if (post->path().find("tty") == std::string::npos) {
            std::cerr << "orvex-sim: the library opens only paths with \"tty\" in them, not "
                      << post->path() << "\n";
        }
    }
}

Posts makePosts(const Options& options, const Scenario& scenario, TraceWriter* trace,
                const Bell& bell) {
    Posts posts;
    for (std::size_t k = 0; k < scenario.devices.size(); ++k) {
        const PostSetup setup{scenario.devices[k], static_cast<unsigned>(k) + 1, trace, &bell};
        const bool hasPort = k < options.ports.size();
        posts.push_back(makePost(setup, hasPort ? std::optional(options.ports[k]) : std::nullopt));
    }
    return posts;
}

int serve(const Options& options) {
    const Scenario scenario = scenarioOf(options.devices, options.scenario);
    check(options, scenario);
    const Signals signals;
    const Bell bell;
    const auto trace =
        options.trace.empty() ? nullptr : std::make_unique<TraceWriter>(options.trace);
    const Workspace workspace;
    Stage stage(signals, bell, makePosts(options, scenario, trace.get(), bell), scenario.timeline);
    stage.begin();
    announce(stage.posts());
    while (!asksToEnd(stage.next().number)) {
    }
    return codeWithTrace(kDone, trace.get());
}

}  // namespace

void addServe(CLI::App& app, Action& chosen) {
    CLI::App* command = app.add_subcommand("serve", "Offer simulated ports until Ctrl-C");
    const auto options = std::make_shared<Options>();
    const auto addPort = [&](const char* name, const char* help, bool isLine) {
        command
            ->add_option_function<std::vector<std::string>>(
                name, [](const std::vector<std::string>&) {}, help)
            ->type_name("PATH")
            ->allow_extra_args(false)
            ->each([options, isLine](const std::string& path) {
                options->ports.push_back({path, isLine});
            });
    };
    command->add_option("-d,--device", options->devices, "A device to simulate; may be repeated")
        ->type_name("DEVICE")
        ->allow_extra_args(false);
    addPort("--link", "Make this link to the device's port", false);
    addPort("--tty", "Play the device on this existing terminal line", true);
    command->add_option("--scenario", options->scenario, "Devices and time line from a file")
        ->type_name("FILE");
    command->add_option("--trace", options->trace, "Write the devices' conversations to a file")
        ->type_name("FILE");
    command->footer(deviceOptionHelp() + kExamples);
    command->callback([options, &chosen] { chosen = [options] { return serve(*options); }; });
}

}  // namespace orvex::tools
