// The command tables: what a caller calls a command, and what the device is sent for it.
#include "device/models.h"

namespace {

const CommandTable lampTable = {
    {"Connect", "tt"},       {"LockFrontPanel", "ll"}, {"UnlockFrontPanel", "nn"},
    {"ClearAlarm", "aa"},    {"OpenShutter", "mm"},    {"CloseShutter", "zz"},
    {"TurnLampOn", "bb"},    {"TurnLampOff", "ss"},    {"GetSoftwareVersion", "vv"},
    {"GetLampHours", "hh"},  {"GetUnitStatus", "uu"},  {"GetIntensityH4", "ii"},
    {"SetIntensityH4", "i"},
};

const CommandTable lampExtendedTable = {
    {"EnableExtendedCommands", "jj"},
    {"GetIntensity", "dd"},
    {"SetIntensity", "d"},
    {"MinimumIntensityPercentage", "ni"},
    {"EnableShutterControl", "cc"},
    {"DisableShutterControl", "yy"},
    {"GetSerialNumber", "GSN"},
    {"IncrementIris", "++"},
    {"DecrementIris", "--"},
    {"GetTemperature", "gt"},
    {"SetOutputPower", "p"},
    {"GetOutputPower", "pp"},
    {"GetPowerFactor", "??"},
};

constexpr const char* none = nullptr;

/// One command of the LED models; a model without it has none.
struct LedCommand {
    const char* name;
    const char* spruce;
    const char* tamar;
    const char* willow;
};

// The letters behind "=" are the device's own notation of its arguments and are sent as they
// stand; "\r" is one carriage return that is part of the request. A name given twice keeps its
// first row.
// clang-format off
constexpr LedCommand kLedCommands[] = {
    {"Connect",                          "co",                          "co\r",   "co"},
    {"Disconnect",                       "dc",                          "dc\r",   "dc"},
    {"GetLedHours",                      "lh?",                         "lh?\r",  "lh?"},
    {"GetSoftwareVersion",               "sv?",                         "sv?\r",  "sv?"},
    {"GetUnitStatus",                    "us?",                         "us?\r",  "us?"},
    {"GetLedOffStates",                  "of?",                         "of?",    "of?"},
    {"GetLedOnStates",                   "on?",                         "on?",    "on?"},
    {"TurnLedOff",                       "of=w,x,y,z",                  "of=",    "of="},
    {"TurnAllLedOff",                    "of=a",                        "of=a",   "of=a"},
    {"TurnLedOn",                        "on=w,x,y,z",                  "on=",    "on="},
    {"TurnAllLedOn",                     "on=a",                        "on=a",   "on="},
    {"ClearAlarm",                       "ca",                          none,     "ca"},
    {"LockFrontPanel",                   "lo",                          "lo",     "lo"},
    {"UnlockFrontPanel",                 "ul",                          "ul",     "ul"},
    {"GetUnitSerialNumber",              "sn?",                         "sn?",    "sn?"},
    {"GetIntensity",                     "ip?",                         "ip?",    "ip?"},
    {"SetIntensity",                     "ip=wwww,xxxx,yyyy,zzzz",      "ip=",    "ip="},
    {"GetSignalDelayTime",               "dt?",                         "dt?",    "dt?"},
    {"SetSignalDelayTime",               "dt=wwwww,xxxxx,yyyyy,zzzzz",  "dt=",    "dt="},
    {"GetSignalOnTime",                  "ot?",                         "ot?",    "ot?"},
    {"SetSignalOnTime",                  "ot=wwwww,xxxxx,yyyyy,zzzzz",  "ot=",    "ot="},
    {"GetSignalOffTime",                 "ft?",                         "ft?",    "ft?"},
    {"SetSignalOffTime",                 "ft=wwwww,xxxxx,yyyyy,zzzzz",  "ft=",    "ft="},
    {"GetTriggerAdvanceTime",            "tt?",                         "tt?",    "tt?"},
    {"SetTriggerAdvanceTime",            "tt=wwwww,xxxxx,yyyyy,zzzzz",  "tt=",    "tt="},
    {"StatusPWM",                        "is",                          "is",     "is"},
    {"StartPWM",                         "is=1",                        "is=1",   "is=1"},
    {"StopPWM",                          "is=0",                        "is=0",   "is=0"},
    {"GetModePWM",                       "sc?",                         "sc?",    "sc?"},
    {"SetModePWM",                       "sc=x",                        "sc=x",   "sc="},
    {"GetUnitsPWM",                      "su?",                         "su?",    "su?"},
    {"SetUnitsPWM",                      "su=w,x,y,z",                  "su=",    "su="},
    {"GetGeneratorPulseMode",            "pm?",                         "pm?",    "pm?"},
    {"SetGeneratorPulseMode",            "pm=x",                        "pm=",    "pm="},
    {"ScreenLCD",                        "ss?",                         "ss?",    "ss?"},
    {"GetScreenBrightness",              "lb?",                         "lb?",    "lb?"},
    {"SetScreenBrightness",              "lb=xxx",                      "lb=",    none},
    {"GetTemperature",                   "gt?",                         "gt?",    "gt?"},
    {"GetSerialNumber",                  "ls?",                         "ls?",    "ls?"},
    {"GetTypeLED",                       "lt?",                         "lt?",    "lt?"},
    {"GetWaveLengthLED",                 "lw?",                         "lw?",    "lw?"},
    {"GetFullWidthHalfMaximumValueLED",  "lf?",                         "lf?",    "lf?"},
    {"GetMaximumTemperaturesLED",        "mt?",                         "mt?",    "mt?"},
    {"GetMinimumtemperaturesLED",        "nt?",                         "nt?",    "nt?"},
    {"GetScreenSaverTimeout",            "st?",                         "st?",    "st?"},
    {"SetScreenSaverTimeout",            "st=xxxxx",                    none,     none},
    {"GetDateLED",                       "md?",                         "md?",    "md?"},
    {"GetTemperatureHysteresisLED",      "th?",                         "th?",    "th?"},
    {"GetNameLED",                       "ln?",                         "ln?",    "ln?"},
    {"GetSpeakerVolume",                 "vo?",                         "vo?",    "vo?"},
    {"SetSpeakerVolume",                 "vo=xxx",                      "vo=",    "vo="},
    {"GetMinimumPulseWidthLED",          "mw?",                         "mw?",    "mw?"},
    {"SetHighSpeedModeLED",              "hs=w,x,y,z",                  "hs=",    "hs="},
    {"GetHighSpeedModeSettingLED",       "hs?",                         "hs?",    "hs?"},
    {"SetStatesLED",                     "8Y",                          none,     none},
    {"SetHighSpeedIntensityLED",         "CY",                          none,     none},
    {"IsGroupEnabled",                   none,                          "ge?",    "ge?"},
    {"EnableGroup",                      none,                          "ge=x",   "ge=x"},
    {"GetLedGroupMembers",               none,                          "lgx?",   "lgx?"},
    {"AssignLedToGroup",                 none,                          "lg=",    "lg="},
    {"IsTerminalMode",                   none,                          "tm?",    none},
    {"SetTerminalMode",                  none,                          "tm=",    none},
    {"GetLedSequencing",                 none,                          "ts?",    "ts?"},
    {"SetLedSequencing",                 none,                          "ts=",    "ts="},
    {"MinimumIntensityPercentage",       none,                          "ni?",    "ni?"},
    {"WavelengthRange",                  none,                          "wr?",    "wr?"},
    {"SaveSettings",                     none,                          "sa",     "sa"},
    {"GetTimeoutTTL",                    none,                          "ti?",    "ti?"},
    {"IsOneAnalogSetting",               none,                          "oa?",    "oa?"},
    {"SetOneAnalogSetting",              none,                          "oa=",    "oa="},
    {"GetLogicTTL",                      none,                          "tl?",    "tl?"},
    {"SetLogicTTL",                      none,                          "tl=",    "tl="},
    {"DosimeterInformation",             none,                          "do?",    none},
    {"SerialType",                       none,                          "si?",    "si?"},
    {"dt=99999",                         none,                          none,     "dt?"},
    {"GetPulseMode",                     none,                          none,     "lc?"},
    {"SetPulseMode",                     none,                          none,     "lc="},
    {"SetVirtualPower",                  none,                          none,     "vp="},
    {"GetVirtualPower",                  none,                          none,     "vp?"},
    {"GainSetting",                      none,                          none,     "ga?"},
    {"GainSetting",                      none,                          none,     "ga="},
    {"GetOpticalIntensitySensorADC",     none,                          none,     "re?"},
    {"GetFilterHD",                      none,                          none,     "hd?"},
    {"SetFilterHD",                      none,                          none,     "hd="},
};
// clang-format on

CommandTable tableOf(const char* LedCommand::*model) {
    CommandTable table;
    for (const LedCommand& command : kLedCommands) {
        if (command.*model != none) {
            table.emplace(command.name, command.*model);
        }
    }
    return table;
}

const CommandTable spruceTable = tableOf(&LedCommand::spruce);
const CommandTable tamarTable = tableOf(&LedCommand::tamar);
const CommandTable willowTable = tableOf(&LedCommand::willow);

}  // namespace

const CommandTable& gl_cmd_lamp = lampTable;
const CommandTable& gl_cmd_lamp_ext = lampExtendedTable;
const CommandTable& gl_cmd_spruce = spruceTable;
const CommandTable& gl_cmd_tamar = tamarTable;
const CommandTable& gl_cmd_willow = willowTable;
