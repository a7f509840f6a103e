#include "tests/transcripts/values.h"

#include <map>

namespace orvex_test {

namespace {

const std::map<std::string, std::string> kOneValue = {
    {"SetIntensityH4", "2"},
    {"SetOutputPower", "80"},
    {"TurnLedOff", "1,2"},
    {"TurnLedOn", "1,2"},
    {"SetModePWM", "1"},
    {"SetGeneratorPulseMode", "3"},
    {"SetPulseMode", "2"},
    {"SetScreenBrightness", "75"},
    {"SetScreenSaverTimeout", "1200"},
    {"SetSpeakerVolume", "25"},
    {"EnableGroup", "1"},
    {"AssignLedToGroup", "2,1"},
    {"SetTerminalMode", "1"},
    {"SetLedSequencing", "1"},
    {"SetOneAnalogSetting", "1"},
    {"SetLogicTTL", "1"},
    {"SetVirtualPower", "1"},
    {"SetFilterHD", "1"},
    // A setting's value behind a request that only asks.
    {"GainSetting", "5"},
    // With the terminator inside the request on one model.
    {"GetSoftwareVersion", "1"},
};

/// For every channel the same.
const std::map<std::string, std::string> kPerChannel = {
    {"SetIntensity", "120"},      {"SetSignalDelayTime", "11"},        {"SetSignalOnTime", "22"},
    {"SetSignalOffTime", "33"},   {"SetTriggerAdvanceTime", "44"},     {"SetUnitsPWM", "1"},
    {"SetHighSpeedModeLED", "1"}, {"SetHighSpeedIntensityLED", "500"}, {"SetStatesLED", "1"},
};

int channelCount(OrvexType model) {
    switch (model) {
        case ORVEX_TYPE_SPRUCE:
            return 4;
        case ORVEX_TYPE_TAMAR:
            return 8;
        case ORVEX_TYPE_WILLOW:
            return 16;
        default:
            return 1;
    }
}

std::string repeated(const std::string& value, int count) {
    std::string list = value;
    for (int k = 1; k < count; ++k) {
        list += "," + value;
    }
    return list;
}

}  // namespace

std::string valueFor(OrvexType model, const std::string& command) {
    if (command == "SetIntensity" && model < ORVEX_TYPE_SPRUCE) {
        return "55";  // Lamps: per cent.
    }
    if (const auto found = kPerChannel.find(command); found != kPerChannel.end()) {
        return repeated(found->second, channelCount(model));
    }
    const auto found = kOneValue.find(command);
    return found != kOneValue.end() ? found->second : "";
}

}  // namespace orvex_test
