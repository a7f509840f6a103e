#include "tools/orvexctl/led_change.h"

#include <algorithm>
#include <map>
#include <set>

#include "device/reply.h"
#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/intensity_words.h"

namespace orvex::tools {

namespace {

/// The channels of a record by their positions.
using Channels = std::map<int, OrvexChannel*>;

Channels channelsOf(Light& light, OrvexStruct& record) {
    Channels channels;
    std::size_t slot = 0;
    for (const int position : light.fittedPositions()) {
        channels[position] = &record.aChannels[slot++];
    }
    return channels;
}

bool isOn(const OrvexChannel& channel) {
    return (channel.iState & 1) != 0;
}

std::string title(int position, const OrvexChannel& channel) {
    const std::string name = channel.szLedName;
    return "Channel " + std::to_string(position) + " (" + (name.empty() ? "" : name + ", ") +
           std::to_string(channel.iWavelength) + " nm)";
}

/// Sets the wanted values. Of a group only the first channel that is switched on stays on.
void take(const std::vector<ChannelChange>& changes, const Channels& channels) {
    std::set<int> selected;
    for (const ChannelChange& change : changes) {
        OrvexChannel& channel = *channels.at(change.position);
        if (change.percent) {
            channel.iIntensity = tenthsOf(*change.percent);
        }
        if (!change.on) {
            continue;
        }
        if (!*change.on || channel.iGroup == 0) {
            channel.iState = *change.on ? 1 : 0;
        } else if (selected.insert(channel.iGroup).second) {
            for (const auto& [position, other] : channels) {
                other->iState = other->iGroup == channel.iGroup ? 0 : other->iState;
            }
            channel.iState = 1;
        }
    }
}

bool groupSelectionChanges(const Channels& before, const Channels& after) {
    return std::any_of(after.begin(), after.end(), [&](const auto& entry) {
        const OrvexChannel& old = *before.at(entry.first);
        return old.iGroup != 0 && isOn(*entry.second) && !isOn(old);
    });
}

/// Models whose limits the library could not read get their intensities by command.
void sendIntensities(Light& light, const std::vector<ChannelChange>& changes) {
    std::vector<int> intensities = light.numbers("GetIntensity");
    for (const ChannelChange& change : changes) {
        if (change.percent) {
            intensities[static_cast<std::size_t>(change.position) - 1] = tenthsOf(*change.percent);
        }
    }
    light.command("SetIntensity", join(intensities, ","));
}

bool anyIntensity(const std::vector<ChannelChange>& changes) {
    return std::any_of(changes.begin(), changes.end(),
                       [](const ChannelChange& change) { return change.percent.has_value(); });
}

void sayChange(const ChannelChange& change, const OrvexChannel& before, const OrvexChannel& after,
               bool complete, Report& report) {
    std::string words;
    if (change.percent) {
        words = percentText(complete ? after.iIntensity : tenthsOf(*change.percent));
    }
    if (change.on) {
        words += (words.empty() ? "" : ", ") + std::string(isOn(after) ? "on" : "off");
        if (*change.on && !isOn(after)) {
            words += " (another channel of group " + std::to_string(after.iGroup) + " is on)";
        }
    }
    const std::string adjusted =
        change.percent && complete ? adjustment(*change.percent, before) : "";
    report.say(title(change.position, after) + ": " + words +
               (adjusted.empty() ? "" : " (" + adjusted + ")"));
}

/// What changed without being asked for by name.
void sayDisplaced(const std::vector<ChannelChange>& changes, const Channels& before,
                  const Channels& after, Report& report) {
    for (const auto& [position, channel] : after) {
        const int here = position;
        const bool named = std::any_of(changes.begin(), changes.end(), [here](const auto& change) {
            return change.position == here && change.on;
        });
        if (!named && isOn(*before.at(position)) && !isOn(*channel)) {
            report.say(title(position, *channel) + ": off (another channel of group " +
                       std::to_string(channel->iGroup) + " is on)");
        }
    }
}

/// Applies a record. The requests before a failing one have been carried out.
void applyOrTell(Light& light, const OrvexStruct& wanted) {
    try {
        light.apply(wanted);
    } catch (const Failure& failure) {
        throw Failure(failure.code(),
                      std::string(failure.what()) +
                          "\n  intensities go out before states, so a part may have been set; "
                          "orvexctl info shows it",
                      failure.advice());
    }
}

}  // namespace

void changeLeds(Light& light, const std::vector<ChannelChange>& changes, Report& report) {
    OrvexStruct before = light.record();
    OrvexStruct wanted = before;
    const Channels old = channelsOf(light, before);
    take(changes, channelsOf(light, wanted));
    if (groupSelectionChanges(old, channelsOf(light, wanted))) {
        report.say("Waiting for the group to settle, at least 1.9 s ...");
    }
    if (!light.isComplete() && anyIntensity(changes)) {
        sendIntensities(light, changes);
        for (auto& [position, channel] : channelsOf(light, wanted)) {
            channel->iIntensity = old.at(position)->iIntensity;
        }
    }
    applyOrTell(light, wanted);
    OrvexStruct record = light.cachedRecord();
    const Channels after = channelsOf(light, record);
    for (const ChannelChange& change : changes) {
        sayChange(change, *old.at(change.position), *after.at(change.position), light.isComplete(),
                  report);
    }
    sayDisplaced(changes, old, after, report);
}

}  // namespace orvex::tools
