#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <csignal>
#include <iostream>

#include "tools/common/models.h"
#include "tools/orvexctl/attached.h"
#include "tools/orvexctl/interrupts.h"
#include "tools/orvexctl/port_access.h"
#include "tools/orvexctl/port_holders.h"
#include "tools/orvexctl/port_watch.h"
#include "tools/orvexctl/program_verb.h"
#include "tools/orvexctl/report.h"
#include "tools/orvexctl/table.h"

namespace orvex::tools {

namespace {

/// "free", "busy: …", "no permission".
struct PortState {
    const char* name;
    std::vector<Process> holders;
};

PortState stateOf(const std::string& port) {
    const PortAccess access = accessTo(port);
    if (!access.exists || !access.allowed) {
        return {access.exists ? "no permission" : "gone", {}};
    }
    const std::vector<Process> holders = holdersOf(port);
    return {holders.empty() ? "free" : "busy", holders};
}

nlohmann::ordered_json toJson(const AttachedLight& light) {
    const PortState state = stateOf(light.port);
    nlohmann::ordered_json holders = nlohmann::ordered_json::array();
    for (const Process& holder : state.holders) {
        holders.push_back({{"pid", holder.id}, {"command", holder.name}});
    }
    return {{"number", light.number},
            {"model", modelName(light.model)},
            {"port", light.port},
            {"serial", light.serial.empty() ? nullptr : nlohmann::ordered_json(light.serial)},
            {"state", state.name},
            {"holders", holders}};
}

void printTable(const std::vector<AttachedLight>& lights) {
    Table table({{"#", Table::Align::right}, {"MODEL"}, {"PORT"}, {"SERIAL"}, {"STATE"}});
    for (const AttachedLight& light : lights) {
        const PortState state = stateOf(light.port);
        table.add(
            {std::to_string(light.number), modelName(light.model), light.port,
             light.serial.empty() ? "-" : light.serial,
             state.name + (state.holders.empty() ? "" : ": held by " + describe(state.holders))});
    }
    table.print(std::cout);
}

class List final : public ProgramVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_flag("--watch", watch_, "Tell of arrivals and departures until Ctrl-C");
    }

    ExitCode run(const CommonOptions& options) override {
        if (watch_) {
            return watch(options.json);
        }
        const std::vector<AttachedLight> lights = attachedLights();
        if (options.json) {
            nlohmann::ordered_json list = nlohmann::ordered_json::array();
            for (const AttachedLight& light : lights) {
                list.push_back(toJson(light));
            }
            std::cout << list.dump(2) << std::endl;
        } else if (!lights.empty()) {
            printTable(lights);
        }
        return lights.empty() ? sayNone(options) : ExitCode::ok;
    }

  private:
    static ExitCode watch(bool asJson) {
        catchInterrupts();
        watchPorts([asJson](const AttachedLight& light, bool arrived) {
            if (asJson) {
                std::cout << nlohmann::json{{"event", arrived ? "arrived" : "departed"},
                                            {"model", modelName(light.model)},
                                            {"port", light.port}}
                          << std::endl;
            } else {
                std::cout << (arrived ? "+ " : "- ") << modelName(light.model) << " on "
                          << light.port << (arrived ? "" : " is gone") << std::endl;
            }
            if (!std::cout) {
                throw Failure(ExitCode::file, "standard output could not be written");
            }
        });
        return interruptSignal() == SIGINT ? ExitCode::ok : interruptedCode();
    }

    static ExitCode sayNone(const CommonOptions& options) {
        if (!options.json) {
            std::cout << "No lights found; looked for " << lookedFor() << ".\n";
        }
        return ExitCode::noDevice;
    }

    bool watch_ = false;
};

}  // namespace

std::unique_ptr<ProgramVerb> makeList() {
    return std::make_unique<List>();
}

}  // namespace orvex::tools
