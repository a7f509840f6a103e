#include "sim/settings.h"

#include <algorithm>
#include <iterator>

namespace orvex::sim {

namespace {

constexpr int kMaxTime = 99999;

// clang-format off
constexpr Setting kLampSettings[] = {
    {"GetOutputPower", "SetOutputPower", false, "100", 100},
    {"GetPowerFactor", nullptr,          false, "1",   0},
};

constexpr Setting kLedSettings[] = {
    {"GetSignalDelayTime",              "SetSignalDelayTime",       true,  "0",          kMaxTime},
    {"GetSignalOnTime",                 "SetSignalOnTime",          true,  "0",          kMaxTime},
    {"GetSignalOffTime",                "SetSignalOffTime",         true,  "0",          kMaxTime},
    {"GetTriggerAdvanceTime",           "SetTriggerAdvanceTime",    true,  "0",          kMaxTime},
    {"GetUnitsPWM",                     "SetUnitsPWM",              true,  "0",          9},
    {"GetHighSpeedModeSettingLED",      "SetHighSpeedModeLED",      true,  "0",          1},
    // No command tells this one.
    {"HighSpeedIntensityLED",           "SetHighSpeedIntensityLED", true,  "0",          1000},
    {"StatusPWM",                       nullptr,                    false, "0",          0},
    {"GetModePWM",                      "SetModePWM",               false, "0",          9},
    {"GetGeneratorPulseMode",           "SetGeneratorPulseMode",    false, "0",          9},
    {"GetPulseMode",                    "SetPulseMode",             false, "0",          9},
    {"GetScreenBrightness",             "SetScreenBrightness",      false, "80",         100},
    {"GetScreenSaverTimeout",           "SetScreenSaverTimeout",    false, "600",        kMaxTime},
    {"GetSpeakerVolume",                "SetSpeakerVolume",         false, "50",         100},
    {"IsGroupEnabled",                  "EnableGroup",              false, "1",          1},
    {"IsTerminalMode",                  "SetTerminalMode",          false, "0",          1},
    {"GetLedSequencing",                "SetLedSequencing",         false, "0",          1},
    {"IsOneAnalogSetting",              "SetOneAnalogSetting",      false, "0",          1},
    {"GetLogicTTL",                     "SetLogicTTL",              false, "1",          1},
    {"GetVirtualPower",                 "SetVirtualPower",          false, "0",          1},
    {"GetFilterHD",                     "SetFilterHD",              false, "0",          1},
    {"GainSetting",                     nullptr,                    false, "1",          0},
    {"GetOpticalIntensitySensorADC",    nullptr,                    false, "512",        0},
    {"GetTimeoutTTL",                   nullptr,                    false, "100",        0},
    {"ScreenLCD",                       nullptr,                    false, "1",          0},
    {"DosimeterInformation",            nullptr,                    false, "0",          0},
    {"SerialType",                      nullptr,                    false, "0",          0},
    {"GetLedHours",                     nullptr,                    true,  "120",        0},
    {"GetSerialNumber",                 nullptr,                    true,  "1001",       0},
    {"GetTypeLED",                      nullptr,                    true,  "1",          0},
    {"GetFullWidthHalfMaximumValueLED", nullptr,                    true,  "20",         0},
    {"GetMaximumTemperaturesLED",       nullptr,                    true,  "80",         0},
    {"GetMinimumtemperaturesLED",       nullptr,                    true,  "5",          0},
    {"GetTemperatureHysteresisLED",     nullptr,                    true,  "5",          0},
    {"GetDateLED",                      nullptr,                    true,  "2024-01-15", 0},
    {"GetMinimumPulseWidthLED",         nullptr,                    true,  "10",         0},
    {"WavelengthRange",                 nullptr,                    true,  "10",         0},
};
// clang-format on

template <typename Fits>
const Setting* findSetting(Fits fits) noexcept {
    const auto* const led = std::find_if(std::begin(kLedSettings), std::end(kLedSettings), fits);
    if (led != std::end(kLedSettings)) {
        return led;
    }
    const auto* const lamp = std::find_if(std::begin(kLampSettings), std::end(kLampSettings), fits);
    return lamp != std::end(kLampSettings) ? lamp : nullptr;
}

void addSetting(DeviceState& state, const Setting& setting) {
    const std::size_t count = setting.perChannel ? state.channels.size() : 1;
    state.settings[setting.getter].assign(count, setting.initial);
}

}  // namespace

const Setting* settingToldBy(std::string_view command) noexcept {
    return findSetting([command](const Setting& setting) { return setting.getter == command; });
}

const Setting* settingSetBy(std::string_view command) noexcept {
    return findSetting([command](const Setting& setting) {
        return setting.setter != nullptr && setting.setter == command;
    });
}

void addSettings(DeviceState& state) {
    if (isLedModel(state.model)) {
        for (const Setting& setting : kLedSettings) {
            addSetting(state, setting);
        }
    } else {
        for (const Setting& setting : kLampSettings) {
            addSetting(state, setting);
        }
    }
}

}  // namespace orvex::sim
