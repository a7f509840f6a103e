// What each model is sent for each command name, row by row in the order of the tables.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "device/light_device.h"
#include "device/models.h"
#include "tests/support/exceptions.h"
#include "tests/support/log_capture.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using testing::ElementsAreArray;

namespace {

using Rows = std::vector<std::pair<std::string, std::string>>;

// clang-format off
const Rows kLampRows = {
    {"ClearAlarm", "aa"},
    {"CloseShutter", "zz"},
    {"Connect", "tt"},
    {"GetIntensityH4", "ii"},
    {"GetLampHours", "hh"},
    {"GetSoftwareVersion", "vv"},
    {"GetUnitStatus", "uu"},
    {"LockFrontPanel", "ll"},
    {"OpenShutter", "mm"},
    {"SetIntensityH4", "i"},
    {"TurnLampOff", "ss"},
    {"TurnLampOn", "bb"},
    {"UnlockFrontPanel", "nn"},
};

const Rows kLampExtendedRows = {
    {"DecrementIris", "--"},
    {"DisableShutterControl", "yy"},
    {"EnableExtendedCommands", "jj"},
    {"EnableShutterControl", "cc"},
    {"GetIntensity", "dd"},
    {"GetOutputPower", "pp"},
    {"GetPowerFactor", "??"},
    {"GetSerialNumber", "GSN"},
    {"GetTemperature", "gt"},
    {"IncrementIris", "++"},
    {"MinimumIntensityPercentage", "ni"},
    {"SetIntensity", "d"},
    {"SetOutputPower", "p"},
};

const Rows kSpruceRows = {
    {"ClearAlarm", "ca"},
    {"Connect", "co"},
    {"Disconnect", "dc"},
    {"GetDateLED", "md?"},
    {"GetFullWidthHalfMaximumValueLED", "lf?"},
    {"GetGeneratorPulseMode", "pm?"},
    {"GetHighSpeedModeSettingLED", "hs?"},
    {"GetIntensity", "ip?"},
    {"GetLedHours", "lh?"},
    {"GetLedOffStates", "of?"},
    {"GetLedOnStates", "on?"},
    {"GetMaximumTemperaturesLED", "mt?"},
    {"GetMinimumPulseWidthLED", "mw?"},
    {"GetMinimumtemperaturesLED", "nt?"},
    {"GetModePWM", "sc?"},
    {"GetNameLED", "ln?"},
    {"GetScreenBrightness", "lb?"},
    {"GetScreenSaverTimeout", "st?"},
    {"GetSerialNumber", "ls?"},
    {"GetSignalDelayTime", "dt?"},
    {"GetSignalOffTime", "ft?"},
    {"GetSignalOnTime", "ot?"},
    {"GetSoftwareVersion", "sv?"},
    {"GetSpeakerVolume", "vo?"},
    {"GetTemperature", "gt?"},
    {"GetTemperatureHysteresisLED", "th?"},
    {"GetTriggerAdvanceTime", "tt?"},
    {"GetTypeLED", "lt?"},
    {"GetUnitSerialNumber", "sn?"},
    {"GetUnitStatus", "us?"},
    {"GetUnitsPWM", "su?"},
    {"GetWaveLengthLED", "lw?"},
    {"LockFrontPanel", "lo"},
    {"ScreenLCD", "ss?"},
    {"SetGeneratorPulseMode", "pm=x"},
    {"SetHighSpeedIntensityLED", "CY"},
    {"SetHighSpeedModeLED", "hs=w,x,y,z"},
    {"SetIntensity", "ip=wwww,xxxx,yyyy,zzzz"},
    {"SetModePWM", "sc=x"},
    {"SetScreenBrightness", "lb=xxx"},
    {"SetScreenSaverTimeout", "st=xxxxx"},
    {"SetSignalDelayTime", "dt=wwwww,xxxxx,yyyyy,zzzzz"},
    {"SetSignalOffTime", "ft=wwwww,xxxxx,yyyyy,zzzzz"},
    {"SetSignalOnTime", "ot=wwwww,xxxxx,yyyyy,zzzzz"},
    {"SetSpeakerVolume", "vo=xxx"},
    {"SetStatesLED", "8Y"},
    {"SetTriggerAdvanceTime", "tt=wwwww,xxxxx,yyyyy,zzzzz"},
    {"SetUnitsPWM", "su=w,x,y,z"},
    {"StartPWM", "is=1"},
    {"StatusPWM", "is"},
    {"StopPWM", "is=0"},
    {"TurnAllLedOff", "of=a"},
    {"TurnAllLedOn", "on=a"},
    {"TurnLedOff", "of=w,x,y,z"},
    {"TurnLedOn", "on=w,x,y,z"},
    {"UnlockFrontPanel", "ul"},
};

const Rows kTamarRows = {
    {"AssignLedToGroup", "lg="},
    {"Connect", "co\r"},
    {"Disconnect", "dc\r"},
    {"DosimeterInformation", "do?"},
    {"EnableGroup", "ge=x"},
    {"GetDateLED", "md?"},
    {"GetFullWidthHalfMaximumValueLED", "lf?"},
    {"GetGeneratorPulseMode", "pm?"},
    {"GetHighSpeedModeSettingLED", "hs?"},
    {"GetIntensity", "ip?"},
    {"GetLedGroupMembers", "lgx?"},
    {"GetLedHours", "lh?\r"},
    {"GetLedOffStates", "of?"},
    {"GetLedOnStates", "on?"},
    {"GetLedSequencing", "ts?"},
    {"GetLogicTTL", "tl?"},
    {"GetMaximumTemperaturesLED", "mt?"},
    {"GetMinimumPulseWidthLED", "mw?"},
    {"GetMinimumtemperaturesLED", "nt?"},
    {"GetModePWM", "sc?"},
    {"GetNameLED", "ln?"},
    {"GetScreenBrightness", "lb?"},
    {"GetScreenSaverTimeout", "st?"},
    {"GetSerialNumber", "ls?"},
    {"GetSignalDelayTime", "dt?"},
    {"GetSignalOffTime", "ft?"},
    {"GetSignalOnTime", "ot?"},
    {"GetSoftwareVersion", "sv?\r"},
    {"GetSpeakerVolume", "vo?"},
    {"GetTemperature", "gt?"},
    {"GetTemperatureHysteresisLED", "th?"},
    {"GetTimeoutTTL", "ti?"},
    {"GetTriggerAdvanceTime", "tt?"},
    {"GetTypeLED", "lt?"},
    {"GetUnitSerialNumber", "sn?"},
    {"GetUnitStatus", "us?\r"},
    {"GetUnitsPWM", "su?"},
    {"GetWaveLengthLED", "lw?"},
    {"IsGroupEnabled", "ge?"},
    {"IsOneAnalogSetting", "oa?"},
    {"IsTerminalMode", "tm?"},
    {"LockFrontPanel", "lo"},
    {"MinimumIntensityPercentage", "ni?"},
    {"SaveSettings", "sa"},
    {"ScreenLCD", "ss?"},
    {"SerialType", "si?"},
    {"SetGeneratorPulseMode", "pm="},
    {"SetHighSpeedModeLED", "hs="},
    {"SetIntensity", "ip="},
    {"SetLedSequencing", "ts="},
    {"SetLogicTTL", "tl="},
    {"SetModePWM", "sc=x"},
    {"SetOneAnalogSetting", "oa="},
    {"SetScreenBrightness", "lb="},
    {"SetSignalDelayTime", "dt="},
    {"SetSignalOffTime", "ft="},
    {"SetSignalOnTime", "ot="},
    {"SetSpeakerVolume", "vo="},
    {"SetTerminalMode", "tm="},
    {"SetTriggerAdvanceTime", "tt="},
    {"SetUnitsPWM", "su="},
    {"StartPWM", "is=1"},
    {"StatusPWM", "is"},
    {"StopPWM", "is=0"},
    {"TurnAllLedOff", "of=a"},
    {"TurnAllLedOn", "on=a"},
    {"TurnLedOff", "of="},
    {"TurnLedOn", "on="},
    {"UnlockFrontPanel", "ul"},
    {"WavelengthRange", "wr?"},
};

const Rows kWillowRows = {
    {"AssignLedToGroup", "lg="},
    {"ClearAlarm", "ca"},
    {"Connect", "co"},
    {"Disconnect", "dc"},
    {"EnableGroup", "ge=x"},
    {"GainSetting", "ga?"},
    {"GetDateLED", "md?"},
    {"GetFilterHD", "hd?"},
    {"GetFullWidthHalfMaximumValueLED", "lf?"},
    {"GetGeneratorPulseMode", "pm?"},
    {"GetHighSpeedModeSettingLED", "hs?"},
    {"GetIntensity", "ip?"},
    {"GetLedGroupMembers", "lgx?"},
    {"GetLedHours", "lh?"},
    {"GetLedOffStates", "of?"},
    {"GetLedOnStates", "on?"},
    {"GetLedSequencing", "ts?"},
    {"GetLogicTTL", "tl?"},
    {"GetMaximumTemperaturesLED", "mt?"},
    {"GetMinimumPulseWidthLED", "mw?"},
    {"GetMinimumtemperaturesLED", "nt?"},
    {"GetModePWM", "sc?"},
    {"GetNameLED", "ln?"},
    {"GetOpticalIntensitySensorADC", "re?"},
    {"GetPulseMode", "lc?"},
    {"GetScreenBrightness", "lb?"},
    {"GetScreenSaverTimeout", "st?"},
    {"GetSerialNumber", "ls?"},
    {"GetSignalDelayTime", "dt?"},
    {"GetSignalOffTime", "ft?"},
    {"GetSignalOnTime", "ot?"},
    {"GetSoftwareVersion", "sv?"},
    {"GetSpeakerVolume", "vo?"},
    {"GetTemperature", "gt?"},
    {"GetTemperatureHysteresisLED", "th?"},
    {"GetTimeoutTTL", "ti?"},
    {"GetTriggerAdvanceTime", "tt?"},
    {"GetTypeLED", "lt?"},
    {"GetUnitSerialNumber", "sn?"},
    {"GetUnitStatus", "us?"},
    {"GetUnitsPWM", "su?"},
    {"GetVirtualPower", "vp?"},
    {"GetWaveLengthLED", "lw?"},
    {"IsGroupEnabled", "ge?"},
    {"IsOneAnalogSetting", "oa?"},
    {"LockFrontPanel", "lo"},
    {"MinimumIntensityPercentage", "ni?"},
    {"SaveSettings", "sa"},
    {"ScreenLCD", "ss?"},
    {"SerialType", "si?"},
    {"SetFilterHD", "hd="},
    {"SetGeneratorPulseMode", "pm="},
    {"SetHighSpeedModeLED", "hs="},
    {"SetIntensity", "ip="},
    {"SetLedSequencing", "ts="},
    {"SetLogicTTL", "tl="},
    {"SetModePWM", "sc="},
    {"SetOneAnalogSetting", "oa="},
    {"SetPulseMode", "lc="},
    {"SetSignalDelayTime", "dt="},
    {"SetSignalOffTime", "ft="},
    {"SetSignalOnTime", "ot="},
    {"SetSpeakerVolume", "vo="},
    {"SetTriggerAdvanceTime", "tt="},
    {"SetUnitsPWM", "su="},
    {"SetVirtualPower", "vp="},
    {"StartPWM", "is=1"},
    {"StatusPWM", "is"},
    {"StopPWM", "is=0"},
    {"TurnAllLedOff", "of=a"},
    {"TurnAllLedOn", "on="},
    {"TurnLedOff", "of="},
    {"TurnLedOn", "on="},
    {"UnlockFrontPanel", "ul"},
    {"WavelengthRange", "wr?"},
    {"dt=99999", "dt?"},
};

// clang-format on

/// The rows of a table in the table's own order.
Rows rowsOf(const CommandTable& table) {
    return {table.begin(), table.end()};
}

TEST(CommandTables, OfTheBasicLamp) {
    EXPECT_EQ(gl_cmd_lamp.size(), 13u);
    EXPECT_THAT(rowsOf(gl_cmd_lamp), ElementsAreArray(kLampRows));
}

TEST(CommandTables, OfTheExtendedLamp) {
    EXPECT_EQ(gl_cmd_lamp_ext.size(), 13u);
    EXPECT_THAT(rowsOf(gl_cmd_lamp_ext), ElementsAreArray(kLampExtendedRows));
}

TEST(CommandTables, OfSpruce) {
    EXPECT_EQ(gl_cmd_spruce.size(), 56u);
    EXPECT_THAT(rowsOf(gl_cmd_spruce), ElementsAreArray(kSpruceRows));
}

TEST(CommandTables, OfTamar) {
    EXPECT_EQ(gl_cmd_tamar.size(), 70u);
    EXPECT_THAT(rowsOf(gl_cmd_tamar), ElementsAreArray(kTamarRows));
}

TEST(CommandTables, OfWillow) {
    EXPECT_EQ(gl_cmd_willow.size(), 76u);
    EXPECT_THAT(rowsOf(gl_cmd_willow), ElementsAreArray(kWillowRows));
}

TEST(CommandTables, KeepTheFirstRowOfANameDefinedTwice) {
    EXPECT_EQ(gl_cmd_willow.at("GainSetting"), "ga?");
    for (const auto& [name, prefix] : gl_cmd_willow) {
        EXPECT_NE(prefix, "ga=") << name;
    }
}

TEST(CommandTables, HaveANameThatLooksLikeARequest) {
    EXPECT_EQ(gl_cmd_willow.at("dt=99999"), "dt?");
    EXPECT_EQ(gl_cmd_willow.at("GetSignalDelayTime"), "dt?");
}

TEST(CommandTables, EndFiveRequestsOfTamarAloneInACarriageReturn) {
    for (const CommandTable* table :
         {&gl_cmd_lamp, &gl_cmd_lamp_ext, &gl_cmd_spruce, &gl_cmd_willow}) {
        for (const auto& [name, prefix] : *table) {
            EXPECT_EQ(prefix.find('\r'), std::string::npos) << name;
        }
    }
    std::vector<std::string> ended;
    for (const auto& [name, prefix] : gl_cmd_tamar) {
        if (prefix.back() == '\r') {
            ended.push_back(name);
        }
    }
    EXPECT_THAT(ended, testing::ElementsAre("Connect", "Disconnect", "GetLedHours",
                                            "GetSoftwareVersion", "GetUnitStatus"));
}

/// How a device without a connection takes a command: a known one fails for the missing connection.
Failure failureOfCommand(OrvexType type, const std::string& name) {
    LightDevice device(type, "/dev/ttyACM9");
    std::string reply;
    return failureOf([&] { device.executeCommand(name, reply, ""); });
}

const Failure kKnown = {0x80517006u, "DriverException (0x80517006) "};

Failure refused(const std::string& name, const std::string& type) {
    return {0xA0515013u, "DriverException (0xa0515013): Command <" + name +
                             "> is not supported for type " + type};
}

void expectKnown(OrvexType type, const Rows& rows) {
    for (const auto& [name, prefix] : rows) {
        EXPECT_EQ(failureOfCommand(type, name), kKnown) << name << " of type " << type;
    }
}

class ModelCommands : public testing::Test {
  protected:
    const LogCapture lines_;
};

TEST_F(ModelCommands, OfAlderAreTheBasicOnesAlone) {
    expectKnown(0, kLampRows);
    for (const auto& [name, prefix] : kLampExtendedRows) {
        EXPECT_EQ(failureOfCommand(0, name), refused(name, "0"));
    }
}

TEST_F(ModelCommands, OfBirchToRowanAreTheBasicAndTheExtendedOnes) {
    for (const OrvexType type : {1u, 2u, 3u, 4u, 5u, 6u}) {
        expectKnown(type, kLampRows);
        expectKnown(type, kLampExtendedRows);
        EXPECT_EQ(failureOfCommand(type, "TurnLedOn"), refused("TurnLedOn", std::to_string(type)));
    }
}

TEST_F(ModelCommands, OfTheLedModelsAreTheirOwn) {
    expectKnown(7, kSpruceRows);
    expectKnown(8, kTamarRows);
    expectKnown(9, kWillowRows);
    EXPECT_EQ(failureOfCommand(7, "SaveSettings"), refused("SaveSettings", "7"));
    EXPECT_EQ(failureOfCommand(8, "ClearAlarm"), refused("ClearAlarm", "8"));
    EXPECT_EQ(failureOfCommand(8, "dt=99999"), refused("dt=99999", "8"));
    EXPECT_EQ(failureOfCommand(9, "SetScreenBrightness"), refused("SetScreenBrightness", "9"));
    EXPECT_EQ(failureOfCommand(9, "IsTerminalMode"), refused("IsTerminalMode", "9"));
}

TEST_F(ModelCommands, AreCaseSensitiveAndWhole) {
    for (const OrvexType type : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u}) {
        for (const char* name :
             {"getlamphours", "getledhours", "CONNECT", "Connec", "Connect ", ""}) {
            EXPECT_EQ(failureOfCommand(type, name), refused(name, std::to_string(type)));
        }
    }
}

}  // namespace
