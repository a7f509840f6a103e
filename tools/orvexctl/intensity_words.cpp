#include "tools/orvexctl/intensity_words.h"

#include <cmath>
#include <cstdio>

#include "device/intensity.h"

namespace orvex::tools {

namespace {

constexpr double kTenthsPerPercent = 10.0;

std::string wantedText(double percent) {
    char text[32];
    std::snprintf(text, sizeof text, "%g %%", percent);
    return text;
}

}  // namespace

std::string percentText(int tenths) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f %%", tenths / kTenthsPerPercent);
    return text;
}

int tenthsOf(double percent) {
    // What is typed in decimal must not lose a tenth for being stored in binary.
    constexpr double kTolerance = 1e-6;
    return static_cast<int>(std::floor(percent * kTenthsPerPercent + kTolerance));
}

std::string adjustment(double wantedPercent, const OrvexChannel& channel) {
    const int result = limitedIntensity(tenthsOf(wantedPercent), channel);
    const std::string change = " from " + wantedText(wantedPercent) + " to ";
    const double difference = result / kTenthsPerPercent - wantedPercent;
    if (std::abs(difference) < 1e-6) {
        return "";
    }
    if (difference > 0) {
        return "raised" + change + "the minimum, " + percentText(result);
    }
    if (result == channel.iMaxIntensity) {
        return "lowered" + change + "the maximum, " + percentText(result);
    }
    const int step = channel.iIntensityStep > 1 ? channel.iIntensityStep : 1;
    return "rounded" + change + percentText(result) + ", steps are " + percentText(step);
}

}  // namespace orvex::tools
