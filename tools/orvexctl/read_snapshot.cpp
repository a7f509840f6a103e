#include "tools/orvexctl/read_snapshot.h"

#include <string_view>

#include "device/reply.h"
#include "tools/orvexctl/replies.h"

namespace orvex::tools {

namespace {

constexpr int kPercentPerLevel = 25;

std::string ask(Light& light, const char* command) {
    return light.knows(command) ? printable(light.command(command)) : std::string();
}

std::string askSerial(Light& light) {
    // The LED models' GetSerialNumber tells of the single LEDs.
    return ask(light,
               light.knows("GetUnitSerialNumber") ? "GetUnitSerialNumber" : "GetSerialNumber");
}

int askNumber(Light& light, const char* command) {
    return requireNumber(std::string(command) + " on " + light.port(), light.command(command));
}

std::vector<ChannelSnapshot> readPositions(Light& light) {
    std::vector<ChannelSnapshot> channels;
    for (const int wavelength : light.wavelengths()) {
        ChannelSnapshot channel;
        channel.position = static_cast<int>(channels.size()) + 1;
        channel.fitted = wavelength != ORVEX_EMPTY_POSITION;
        channel.wavelength = channel.fitted ? wavelength : 0;
        channels.push_back(channel);
    }
    return channels;
}

void readNames(Light& light, std::vector<ChannelSnapshot>& channels) {
    const std::string reply = light.command("GetNameLED");
    const std::vector<std::string_view> names = split(reply, ",");
    for (std::size_t k = 0; k < std::min(names.size(), channels.size()); ++k) {
        channels[k].name = channels[k].fitted ? printable(std::string(names[k])) : "";
    }
}

/// What only the library's record tells: the limits and groups.
void takeLimits(const OrvexStruct& record, std::vector<ChannelSnapshot>& channels) {
    std::int32_t slot = 0;
    for (ChannelSnapshot& channel : channels) {
        if (!channel.fitted || slot == record.iNumChannels) {
            continue;
        }
        const OrvexChannel& told = record.aChannels[slot++];
        channel.group = told.iGroup;
        if (told.iMaxIntensity > 0) {
            channel.minimum = told.iMinIntensity;
            channel.maximum = told.iMaxIntensity;
            channel.step = told.iIntensityStep;
        }
    }
}

LampSnapshot readLamp(Light& light) {
    LampSnapshot lamp;
    lamp.hours = askNumber(light, "GetLampHours");
    const bool extended = light.knows("GetIntensity");
    lamp.intensity = extended ? askNumber(light, "GetIntensity")
                              : askNumber(light, "GetIntensityH4") * kPercentPerLevel;
    if (extended) {
        lamp.minimum = askNumber(light, "MinimumIntensityPercentage");
        lamp.temperature = askNumber(light, "GetTemperature");
    }
    return lamp;
}

void refreshChannels(Light& light, std::vector<ChannelSnapshot>& channels) {
    const std::vector<int> intensities = light.numbers("GetIntensity");
    const std::vector<int> temperatures = light.numbers("GetTemperature");
    const std::vector<int> states = light.numbers("GetUnitStatus");
    for (std::size_t k = 0; k < channels.size(); ++k) {
        if (channels[k].fitted) {
            channels[k].intensity = intensities[k];
            channels[k].temperature = temperatures[k];
            channels[k].on = (states[k] & 1) != 0;
        }
    }
}

}  // namespace

Snapshot readSnapshot(Light& light) {
    Snapshot snapshot;
    snapshot.type = light.model();
    snapshot.port = light.port();
    snapshot.firmware = ask(light, "GetSoftwareVersion");
    snapshot.serial = askSerial(light);
    const OrvexStruct record = light.cachedRecord();
    snapshot.capabilities = record.iCapabilities;
    if (!speaksLampCommands(light.model())) {
        snapshot.channels = readPositions(light);
        readNames(light, snapshot.channels);
        takeLimits(record, snapshot.channels);
    }
    refresh(light, snapshot);
    return snapshot;
}

void refresh(Light& light, Snapshot& snapshot) {
    snapshot.unitStatus = ask(light, "GetUnitStatus");
    if (speaksLampCommands(light.model())) {
        snapshot.lamp = readLamp(light);
    } else {
        refreshChannels(light, snapshot.channels);
    }
}

}  // namespace orvex::tools
