#include "tools/orvexctl/channel_change.h"

#include <algorithm>

#include "tools/common/nearest.h"
#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/lamp_change.h"
#include "tools/orvexctl/led_change.h"

namespace orvex::tools {

namespace {

std::string listed(const std::vector<int>& positions) {
    std::vector<std::string> texts;
    texts.reserve(positions.size());
    for (const int position : positions) {
        texts.push_back(std::to_string(position));
    }
    return alternatives(texts);
}

}  // namespace

std::vector<int> usablePositions(Light& light) {
    return speaksLampCommands(light.model()) ? std::vector<int>{1} : light.fittedPositions();
}

void requireUsablePosition(Light& light, int position, const std::string& culprit) {
    const std::vector<int> usable = usablePositions(light);
    if (std::find(usable.begin(), usable.end(), position) != usable.end()) {
        return;
    }
    const int count = static_cast<int>(light.wavelengths().size());
    const bool empty = position >= 1 && position <= count;
    throw Failure(ExitCode::usage, culprit + ": channel " + std::to_string(position) +
                                       (empty ? " is a position without an LED" : " is not there") +
                                       "; the " + light.title() + " has " + listed(usable));
}

void applyChanges(Light& light, const std::vector<ChannelChange>& changes, Report& report) {
    if (speaksLampCommands(light.model())) {
        for (const ChannelChange& change : changes) {
            changeLamp(light, change, report);
        }
    } else {
        changeLeds(light, changes, report);
    }
}

}  // namespace orvex::tools
