#include "tests/soak/commands.h"

#include <algorithm>
#include <iterator>

namespace orvex_soak {

namespace {

struct Row {
    const char* name;
    const char* lamp;      ///< Alder
    const char* extended;  ///< Birch to Rowan
    const char* spruce;
    const char* tamar;
    const char* willow;
};

// clang-format off
constexpr Row kRows[] = {
    {"Connect",                    "tt",    "tt",    "co",          "co\r",  "co"},
    {"Disconnect",                 nullptr, nullptr, "dc",          "dc\r",  "dc"},
    {"EnableExtendedCommands",     nullptr, "jj",    nullptr,       nullptr, nullptr},
    {"GetUnitStatus",              "uu",    "uu",    "us?",         "us?\r", "us?"},
    {"GetSoftwareVersion",         "vv",    "vv",    "sv?",         "sv?\r", "sv?"},
    {"GetWaveLengthLED",           nullptr, nullptr, "lw?",         "lw?",   "lw?"},
    {"MinimumIntensityPercentage", nullptr, "ni",    nullptr,       "ni?",   "ni?"},
    {"GetIntensity",               nullptr, "dd",    "ip?",         "ip?",   "ip?"},
    {"GetIntensityH4",             "ii",    "ii",    nullptr,       nullptr, nullptr},
    {"SetIntensity",               nullptr, "d",     "ip=wwww,xxxx,yyyy,zzzz", "ip=", "ip="},
    {"SetIntensityH4",             "i",     "i",     nullptr,       nullptr, nullptr},
    {"GetTemperature",             nullptr, "gt",    "gt?",         "gt?",   "gt?"},
    {"GetNameLED",                 nullptr, nullptr, "ln?",         "ln?",   "ln?"},
    {"GetUnitSerialNumber",        nullptr, nullptr, "sn?",         "sn?",   "sn?"},
    {"GetSerialNumber",            nullptr, "GSN",   "ls?",         "ls?",   "ls?"},
    {"OpenShutter",                "mm",    "mm",    nullptr,       nullptr, nullptr},
    {"CloseShutter",               "zz",    "zz",    nullptr,       nullptr, nullptr},
    {"TurnLampOn",                 "bb",    "bb",    nullptr,       nullptr, nullptr},
    {"TurnLampOff",                "ss",    "ss",    nullptr,       nullptr, nullptr},
    {"GetLampHours",               "hh",    "hh",    nullptr,       nullptr, nullptr},
    {"IncrementIris",              nullptr, "++",    nullptr,       nullptr, nullptr},
    {"SetOutputPower",             nullptr, "p",     nullptr,       nullptr, nullptr},
    {"GetPowerFactor",             nullptr, "??",    nullptr,       nullptr, nullptr},
    {"TurnLedOn",                  nullptr, nullptr, "on=w,x,y,z",  "on=",   "on="},
    {"TurnLedOff",                 nullptr, nullptr, "of=w,x,y,z",  "of=",   "of="},
    {"TurnAllLedOn",               nullptr, nullptr, "on=a",        "on=a",  "on="},
    {"TurnAllLedOff",              nullptr, nullptr, "of=a",        "of=a",  "of=a"},
    {"GetLedHours",                nullptr, nullptr, "lh?",         "lh?\r", "lh?"},
    {"GetLedOnStates",             nullptr, nullptr, "on?",         "on?",   "on?"},
    {"GetLedOffStates",            nullptr, nullptr, "of?",         "of?",   "of?"},
    {"SetSpeakerVolume",           nullptr, nullptr, "vo=xxx",      "vo=",   "vo="},
    {"SetScreenBrightness",        nullptr, nullptr, "lb=xxx",      "lb=",   nullptr},
    {"SetStatesLED",               nullptr, nullptr, "8Y",          nullptr, nullptr},
    {"ClearAlarm",                 "aa",    "aa",    "ca",          nullptr, "ca"},
    {"SaveSettings",               nullptr, nullptr, nullptr,       "sa",    "sa"},
    {"DosimeterInformation",       nullptr, nullptr, nullptr,       "do?",   nullptr},
    {"GainSetting",                nullptr, nullptr, nullptr,       nullptr, "ga?"},
    {"dt=99999",                   nullptr, nullptr, nullptr,       nullptr, "dt?"},
    {"getlamphours",               nullptr, nullptr, nullptr,       nullptr, nullptr},
    {"",                           nullptr, nullptr, nullptr,       nullptr, nullptr},
};
// clang-format on

const char* columnOf(const Row& row, OrvexType model) {
    switch (model) {
        case ORVEX_TYPE_ALDER:
            return row.lamp;
        case ORVEX_TYPE_SPRUCE:
            return row.spruce;
        case ORVEX_TYPE_TAMAR:
            return row.tamar;
        case ORVEX_TYPE_WILLOW:
            return row.willow;
        default:
            return row.extended;
    }
}

}  // namespace

std::optional<std::string> requestOf(OrvexType model, const std::string& command) {
    const Row* const row = std::find_if(std::begin(kRows), std::end(kRows),
                                        [&](const Row& known) { return known.name == command; });
    if (row == std::end(kRows) || columnOf(*row, model) == nullptr) {
        return std::nullopt;
    }
    return columnOf(*row, model);
}

const std::vector<std::string>& commandNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const Row& row : kRows) {
            all.emplace_back(row.name);
        }
        return all;
    }();
    return names;
}

}  // namespace orvex_soak
