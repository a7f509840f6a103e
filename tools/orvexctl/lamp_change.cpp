#include "tools/orvexctl/lamp_change.h"

#include "device/intensity.h"
#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/intensity_words.h"
#include "tools/orvexctl/replies.h"

namespace orvex::tools {

namespace {

constexpr int kTenthsPerPercent = 10;
constexpr int kTenthsPerLevel = 250;
constexpr int kLargestTenths = 1000;

/// The lamp's limits in tenths of a per cent.
OrvexChannel limitsOf(Light& light, bool extended) {
    OrvexChannel limits{};
    limits.iMaxIntensity = kLargestTenths;
    limits.iIntensityStep = extended ? kTenthsPerPercent : kTenthsPerLevel;
    if (extended) {
        const std::string name = "MinimumIntensityPercentage";
        limits.iMinIntensity =
            requireNumber(name + " on " + light.port(), light.command(name)) * kTenthsPerPercent;
    }
    return limits;
}

void setIntensity(Light& light, double percent, Report& report) {
    const bool extended = light.knows("SetIntensity");
    const OrvexChannel limits = limitsOf(light, extended);
    const int tenths = limitedIntensity(tenthsOf(percent), limits);
    light.command(extended ? "SetIntensity" : "SetIntensityH4",
                  std::to_string(tenths / limits.iIntensityStep));
    const std::string adjusted = adjustment(percent, limits);
    report.say("Intensity: " + percentText(tenths) +
               (adjusted.empty() ? "" : " (" + adjusted + ")"));
}

}  // namespace

void switchLamp(Light& light, const char* command, const char* words, Report& report) {
    light.command(command);
    report.say(words);
}

void changeLamp(Light& light, const ChannelChange& change, Report& report) {
    if (change.percent) {
        setIntensity(light, *change.percent, report);
    }
    if (change.on) {
        switchLamp(light, *change.on ? "OpenShutter" : "CloseShutter",
                   *change.on ? "Shutter open." : "Shutter closed.", report);
    }
}

void requireCommand(const Light& light, const char* command, const char* what) {
    if (!light.knows(command)) {
        throw Failure(ExitCode::usage,
                      "the " + light.title() + " has no " + what + " (ORVEX_ERR_NOT_SUPPORTED)",
                      "switch its channels with orvexctl on and orvexctl off");
    }
}

}  // namespace orvex::tools
