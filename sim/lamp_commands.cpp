// The lamps' commands. On the line a lamp's intensity is in per cent, or a level from 0 to 4.
#include <algorithm>

#include "sim/commands.h"

namespace orvex::sim {

namespace {

using Reply = std::optional<std::string>;

constexpr int kTenthsPerPercent = 10;
constexpr int kTenthsPerLevel = 250;

Channel& lamp(DeviceState& state) {
    return state.channels.front();
}

template <bool DeviceState::*flag, bool on>
Reply setFlag(DeviceState& state, std::string_view /*value*/) {
    state.*flag = on;
    return "";
}

Reply tellStatus(DeviceState& state, std::string_view /*value*/) {
    const int status = (state.lampOn ? 1 : 0) + (state.shutterOpen ? 2 : 0) +
                       (state.frontPanelLocked ? 4 : 0) + (state.alarm ? 8 : 0);
    return std::to_string(status);
}

template <int tenthsPerUnit>
Reply tellIntensity(DeviceState& state, std::string_view /*value*/) {
    return std::to_string(lamp(state).intensity / tenthsPerUnit);
}

template <int tenthsPerUnit>
Reply changeIntensity(DeviceState& state, std::string_view value) {
    const auto units = parseOne(value, lamp(state).maximum / tenthsPerUnit);
    if (!units || (*units != 0 && *units * tenthsPerUnit < lamp(state).minimum)) {
        return std::nullopt;
    }
    lamp(state).intensity = *units * tenthsPerUnit;
    return "";
}

Reply tellMinimum(DeviceState& state, std::string_view /*value*/) {
    return std::to_string(lamp(state).minimum / kTenthsPerPercent);
}

Reply tellTemperature(DeviceState& state, std::string_view /*value*/) {
    return std::to_string(lamp(state).temperature);
}

Reply tellLampHours(DeviceState& state, std::string_view /*value*/) {
    return std::to_string(state.lampHours);
}

template <int step>
Reply moveIris(DeviceState& state, std::string_view /*value*/) {
    state.iris = std::clamp(state.iris + step, 0, 100);
    return "";
}

}  // namespace

const std::vector<Command>& lampCommands() {
    // clang-format off
    static const std::vector<Command> commands = {
        {"Connect",                    false, connect},
        {"LockFrontPanel",             false, lockFrontPanel},
        {"UnlockFrontPanel",           false, unlockFrontPanel},
        {"ClearAlarm",                 false, clearAlarm},
        {"OpenShutter",                false, setFlag<&DeviceState::shutterOpen, true>},
        {"CloseShutter",               false, setFlag<&DeviceState::shutterOpen, false>},
        {"TurnLampOn",                 false, setFlag<&DeviceState::lampOn, true>},
        {"TurnLampOff",                false, setFlag<&DeviceState::lampOn, false>},
        {"GetSoftwareVersion",         false, tellSoftwareVersion},
        {"GetLampHours",               false, tellLampHours},
        {"GetUnitStatus",              false, tellStatus},
        {"GetIntensityH4",             false, tellIntensity<kTenthsPerLevel>},
        {"SetIntensityH4",             true,  changeIntensity<kTenthsPerLevel>},
        {"EnableExtendedCommands",     false, setFlag<&DeviceState::extendedCommands, true>},
        {"GetIntensity",               false, tellIntensity<kTenthsPerPercent>},
        {"SetIntensity",               true,  changeIntensity<kTenthsPerPercent>},
        {"MinimumIntensityPercentage", false, tellMinimum},
        {"EnableShutterControl",       false, setFlag<&DeviceState::shutterControl, true>},
        {"DisableShutterControl",      false, setFlag<&DeviceState::shutterControl, false>},
        {"GetSerialNumber",            false, tellSerialText},
        {"IncrementIris",              false, moveIris<1>},
        {"DecrementIris",              false, moveIris<-1>},
        {"GetTemperature",             false, tellTemperature},
    };
    // clang-format on
    return commands;
}

}  // namespace orvex::sim
