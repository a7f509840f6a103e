#include "tools/orvex-sim/scenario_device.h"

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "tools/common/models.h"
#include "tools/common/snapshot.h"

namespace orvex::tools {

namespace {

using nlohmann::json;

constexpr int kTenthsPerPercent = 10;
constexpr int kLongestTime = 600'000;
// The bits of a lamp's unit status.
constexpr int kLampOn = 1;
constexpr int kShutterOpen = 2;
constexpr int kPanelLocked = 4;
constexpr int kAlarm = 8;

ChannelSnapshot snapshotOf(const sim::Channel& channel, int position) {
    ChannelSnapshot snapshot;
    snapshot.position = position;
    snapshot.fitted = channel.wavelength != ORVEX_EMPTY_POSITION;
    snapshot.name = channel.name;
    snapshot.wavelength = channel.wavelength;
    snapshot.intensity = channel.intensity;
    snapshot.minimum = channel.minimum;
    snapshot.maximum = channel.maximum;
    snapshot.temperature = channel.temperature;
    snapshot.group = channel.group;
    snapshot.on = channel.on;
    return snapshot;
}

LampSnapshot lampSnapshotOf(const sim::DeviceState& state) {
    const sim::Channel& lamp = state.channels.front();
    return {state.lampHours, lamp.intensity / kTenthsPerPercent, lamp.minimum / kTenthsPerPercent,
            lamp.temperature};
}

/// A device that nobody has said anything about, as JSON.
json defaultsOf(OrvexType model) {
    sim::DeviceSetup setup;
    setup.model = model;
    const sim::DeviceState state = sim::initialState(setup);
    Snapshot snapshot;
    snapshot.type = model;
    snapshot.firmware = state.softwareVersion;
    snapshot.serial = state.serialText;
    if (speaksLampCommands(model)) {
        snapshot.lamp = lampSnapshotOf(state);
    } else {
        for (const sim::Channel& channel : state.channels) {
            snapshot.channels.push_back(
                snapshotOf(channel, static_cast<int>(snapshot.channels.size()) + 1));
        }
    }
    return toJson(snapshot);
}

/// @throws std::invalid_argument
Snapshot readSnapshot(json object, const JsonMember& member) {
    const auto model = modelNamed(member["model"].text());
    object.erase("simulator");
    if (model) {
        const json defaults = defaultsOf(*model);
        for (const auto& [name, value] : defaults.items()) {
            if (!object.contains(name)) {
                object[name] = value;
            }
        }
    }
    try {
        return snapshotFromJson(object);
    } catch (const std::invalid_argument& e) {
        const std::string problem = e.what();
        const bool namesMember = problem.find(' ') == problem.find(": ") + 1;
        throw std::invalid_argument(member.path() + (namesMember ? "." : ": ") + problem);
    }
}

void takeChannels(const Snapshot& snapshot, sim::DeviceSetup& setup) {
    for (const ChannelSnapshot& channel : snapshot.channels) {
        setup.wavelengths.push_back(channel.fitted ? channel.wavelength : ORVEX_EMPTY_POSITION);
        setup.names.push_back(channel.fitted ? channel.name : "empty");
        setup.intensities.push_back(channel.intensity);
        setup.temperatures.push_back(channel.temperature);
        if (channel.on) {
            setup.ledsOn.push_back(channel.position);
        }
    }
}

void takeLamp(const LampSnapshot& lamp, sim::DeviceSetup& setup) {
    setup.lampHours = lamp.hours;
    setup.intensities = {lamp.intensity * kTenthsPerPercent};
    if (lamp.minimum) {
        setup.minimum = *lamp.minimum * kTenthsPerPercent;
    }
    if (lamp.temperature) {
        setup.temperatures = {*lamp.temperature};
    }
}

void adjustChannels(const Snapshot& snapshot, sim::DeviceState& state) {
    for (std::size_t k = 0; k < snapshot.channels.size(); ++k) {
        const ChannelSnapshot& told = snapshot.channels[k];
        if (told.fitted) {
            state.channels[k].minimum = told.minimum;
            state.channels[k].maximum = told.maximum;
            state.channels[k].group = told.group;
        }
    }
}

void adjustLamp(int status, sim::DeviceState& state) {
    state.lampOn = (status & kLampOn) != 0;
    state.shutterOpen = (status & kShutterOpen) != 0;
    state.frontPanelLocked = (status & kPanelLocked) != 0;
    state.alarm = (status & kAlarm) != 0;
}

/// The number that a lamp's unit status is; 0 when nothing is said of it.
int lampStatus(const Snapshot& snapshot, const JsonMember& member) {
    const std::string& text = snapshot.unitStatus;
    if (text.empty()) {
        return 0;
    }
    if (text.size() > 2 || text.find_first_not_of("0123456789") != std::string::npos) {
        member["unitStatus"].fail("\"" + text + "\" is no status of a lamp");
    }
    return std::stoi(text);
}

void readSimulatorMembers(const JsonMember& simulator, DevicePlan& plan) {
    simulator.requireOnly({"name", "pluggedIn", "settleMs"});
    if (simulator.has("name")) {
        plan.name = simulator["name"].text();
    }
    if (simulator.has("pluggedIn")) {
        plan.pluggedIn = simulator["pluggedIn"].truth();
    }
    if (simulator.has("settleMs")) {
        plan.setup.settleDelay =
            std::chrono::milliseconds(simulator["settleMs"].integer(0, kLongestTime));
    }
}

}  // namespace

DevicePlan readScenarioDevice(const json& object, const JsonMember& member) {
    const Snapshot snapshot = readSnapshot(object, member);
    DevicePlan plan;
    plan.setup.model = snapshot.type;
    plan.setup.softwareVersion = snapshot.firmware;
    plan.setup.serialText = snapshot.serial;
    if (snapshot.lamp) {
        takeLamp(*snapshot.lamp, plan.setup);
        plan.adjust = [status = lampStatus(snapshot, member)](sim::DeviceState& state) {
            adjustLamp(status, state);
        };
    } else {
        takeChannels(snapshot, plan.setup);
        plan.adjust = [snapshot](sim::DeviceState& state) { adjustChannels(snapshot, state); };
    }
    if (member.has("simulator")) {
        readSimulatorMembers(member["simulator"], plan);
    }
    return plan;
}

}  // namespace orvex::tools
