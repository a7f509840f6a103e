// The LED models' commands. On the line positions count from 1 and intensities are in tenths of a
// per cent.
#include <algorithm>

#include "sim/commands.h"

namespace orvex::sim {

namespace {

using Reply = std::optional<std::string>;

constexpr int kMaxGroup = 20;

/// One text per channel.
template <typename Tell>
std::string listed(const DeviceState& state, Tell tell) {
    std::vector<std::string> texts;
    for (const Channel& channel : state.channels) {
        texts.push_back(tell(channel));
    }
    return join(texts);
}

template <int Channel::*field>
Reply tellNumbers(DeviceState& state, std::string_view /*value*/) {
    return listed(state, [](const Channel& channel) { return std::to_string(channel.*field); });
}

Reply tellNames(DeviceState& state, std::string_view /*value*/) {
    return listed(state, [](const Channel& channel) { return channel.name; });
}

bool reportsOn(const Channel& channel, Clock::time_point now) {
    return now < channel.settlesAt ? channel.reportedOn : channel.on;
}

/// 1 for every channel that is as `on` says.
template <bool on>
Reply tellSwitched(DeviceState& state, std::string_view /*value*/) {
    const auto now = Clock::now();
    return listed(state, [now](const Channel& channel) {
        return std::to_string(static_cast<int>(reportsOn(channel, now) == on));
    });
}

void switchChannel(Channel& channel, bool on, std::chrono::milliseconds settleDelay) {
    const bool empty = channel.wavelength == ORVEX_EMPTY_POSITION;
    if (empty || channel.on == on) {
        return;
    }
    if (channel.group != 0) {
        const auto now = Clock::now();
        channel.reportedOn = reportsOn(channel, now);
        channel.settlesAt = now + settleDelay;
    }
    channel.on = on;
}

template <bool on>
Reply switchAll(DeviceState& state, std::string_view /*value*/) {
    for (Channel& channel : state.channels) {
        switchChannel(channel, on, state.settleDelay);
    }
    return "";
}

template <bool on>
Reply switchListed(DeviceState& state, std::string_view value) {
    const auto positions = parseList(value, static_cast<int>(state.channels.size()));
    if (!positions || std::count(positions->begin(), positions->end(), 0) != 0) {
        return std::nullopt;
    }
    for (const int position : *positions) {
        switchChannel(state.channels[static_cast<std::size_t>(position) - 1], on,
                      state.settleDelay);
    }
    return "";
}

/// A list of 0 and 1, one per channel.
Reply setStates(DeviceState& state, std::string_view value) {
    const auto states = parseList(value, state.channels.size(), 1);
    if (!states) {
        return std::nullopt;
    }
    for (std::size_t k = 0; k < states->size(); ++k) {
        switchChannel(state.channels[k], (*states)[k] != 0, state.settleDelay);
    }
    return "";
}

/// A client that changes one intensity sends all of them: the present ones are always taken.
bool mayHave(const Channel& channel, int intensity) {
    const bool within = intensity >= channel.minimum && intensity <= channel.maximum;
    return within || intensity == 0 || intensity == channel.intensity;
}

Reply changeIntensities(DeviceState& state, std::string_view value) {
    constexpr int kHighest = 9999;
    const auto intensities = parseList(value, state.channels.size(), kHighest);
    if (!intensities ||
        !std::equal(state.channels.begin(), state.channels.end(), intensities->begin(), mayHave)) {
        return std::nullopt;
    }
    for (std::size_t k = 0; k < intensities->size(); ++k) {
        state.channels[k].intensity = (*intensities)[k];
    }
    return "";
}

Reply disconnect(DeviceState& state, std::string_view /*value*/) {
    state.connected = false;
    return "";
}

template <bool running>
Reply runPwm(DeviceState& state, std::string_view /*value*/) {
    state.settings["StatusPWM"] = {running ? "1" : "0"};
    return "";
}

/// "position,group"; group 0 takes the LED out of its group.
Reply assignToGroup(DeviceState& state, std::string_view value) {
    const auto numbers = parseList(value, 2, kMaxGroup);
    if (!numbers) {
        return std::nullopt;
    }
    const auto position = static_cast<std::size_t>(numbers->front());
    if (position < 1 || position > state.channels.size()) {
        return std::nullopt;
    }
    state.channels[position - 1].group = numbers->back();
    return "";
}

/// The positions in group 1, the one group that a device has of its own accord.
Reply tellGroupMembers(DeviceState& state, std::string_view /*value*/) {
    std::vector<std::string> positions;
    for (std::size_t k = 0; k < state.channels.size(); ++k) {
        if (state.channels[k].group == 1) {
            positions.push_back(std::to_string(k + 1));
        }
    }
    return positions.empty() ? "0" : join(positions);
}

Reply saveSettings(DeviceState& state, std::string_view /*value*/) {
    ++state.savedSettings;
    return "";
}

Reply tellDelayTimes(DeviceState& state, std::string_view /*value*/) {
    return join(state.settings["GetSignalDelayTime"]);
}

}  // namespace

const std::vector<Command>& ledCommands() {
    // clang-format off
    static const std::vector<Command> commands = {
        {"Connect",                    false, connect},
        {"Disconnect",                 false, disconnect},
        {"GetSoftwareVersion",         false, tellSoftwareVersion},
        {"GetUnitStatus",              false, tellSwitched<true>},
        {"GetLedOffStates",            false, tellSwitched<false>},
        {"GetLedOnStates",             false, tellSwitched<true>},
        {"TurnLedOff",                 true,  switchListed<false>},
        {"TurnAllLedOff",              false, switchAll<false>},
        {"TurnLedOn",                  true,  switchListed<true>},
        {"TurnAllLedOn",               false, switchAll<true>},
        {"SetStatesLED",               true,  setStates},
        {"ClearAlarm",                 false, clearAlarm},
        {"LockFrontPanel",             false, lockFrontPanel},
        {"UnlockFrontPanel",           false, unlockFrontPanel},
        {"GetUnitSerialNumber",        false, tellSerialText},
        {"GetIntensity",               false, tellNumbers<&Channel::intensity>},
        {"SetIntensity",               true,  changeIntensities},
        {"StartPWM",                   false, runPwm<true>},
        {"StopPWM",                    false, runPwm<false>},
        {"GetTemperature",             false, tellNumbers<&Channel::temperature>},
        {"GetWaveLengthLED",           false, tellNumbers<&Channel::wavelength>},
        {"GetNameLED",                 false, tellNames},
        {"MinimumIntensityPercentage", false, tellNumbers<&Channel::minimum>},
        {"GetLedGroupMembers",         false, tellGroupMembers},
        {"AssignLedToGroup",           true,  assignToGroup},
        {"SaveSettings",               false, saveSettings},
        {"dt=99999",                   false, tellDelayTimes},
    };
    // clang-format on
    return commands;
}

}  // namespace orvex::sim
