#include <cmath>

#include "tools/common/capabilities.h"
#include "tools/common/json_member.h"
#include "tools/common/models.h"
#include "tools/common/snapshot.h"

namespace orvex::tools {

namespace {

constexpr int kLargestIntensity = 1000;
constexpr int kLargestGroup = 20;
constexpr double kRawPerPercent = 10.0;
constexpr int kLargestPercent = 100;

OrvexType readModel(const JsonMember& object) {
    const JsonMember name = object["model"];
    const std::optional<OrvexType> model = modelNamed(name.text());
    if (!model) {
        name.fail(unknownModelText(name.text()));
    }
    if (object.has("type") && object["type"].integer() != static_cast<int>(*model)) {
        object["type"].fail("is not the number of model " + modelName(*model));
    }
    return *model;
}

std::uint32_t readCapabilities(const JsonMember& list) {
    std::uint32_t bits = 0;
    for (const JsonMember& name : list.elements()) {
        const std::uint32_t before = bits;
        for (const Capability& capability : kCapabilities) {
            bits |= name.text() == capability.name ? capability.bit : 0;
        }
        if (bits == before) {
            name.fail("\"" + name.text() + "\" is not a capability, or is there twice");
        }
    }
    return bits;
}

int readIntensity(const JsonMember& channel) {
    const JsonMember raw = channel["raw"];
    const int intensity = raw.integer(0, kLargestIntensity);
    if (channel.has("percent")) {
        const JsonMember percent = channel["percent"];
        if (std::lround(percent.number() * kRawPerPercent) != intensity) {
            percent.fail("does not agree with \"raw\"");
        }
    }
    return intensity;
}

void readFittedChannel(const JsonMember& object, ChannelSnapshot& channel) {
    channel.name = object["name"].text();
    if (channel.name.find_first_of(",\r\n") != std::string::npos) {
        object["name"].fail("must not hold a comma or an end of line");
    }
    const JsonMember wavelength = object["wavelength"];
    channel.wavelength = wavelength.integer(1);
    if (channel.wavelength == ORVEX_EMPTY_POSITION) {
        wavelength.fail("999 stands for a position without an LED: write \"fitted\": false");
    }
    channel.intensity = readIntensity(object);
    channel.minimum = object["minimum"].integer(0, kLargestIntensity);
    channel.maximum = object["maximum"].integer(0, kLargestIntensity);
    channel.step = object["step"].integer(0, kLargestIntensity);
    channel.temperature = object.has("temperature") ? object["temperature"].integer() : 0;
    channel.group = object["group"].integer(0, kLargestGroup);
    channel.on = object.has("on") && object["on"].truth();
}

ChannelSnapshot readChannel(const JsonMember& object, int position) {
    object.requireOnly({"position", "fitted", "name", "wavelength", "percent", "raw", "minimum",
                        "maximum", "step", "temperature", "group", "on"});
    ChannelSnapshot channel;
    channel.position = object["position"].integer();
    if (channel.position != position) {
        object["position"].fail("must be " + std::to_string(position) +
                                ": positions follow each other from 1");
    }
    channel.fitted = !object.has("fitted") || object["fitted"].truth();
    if (channel.fitted) {
        readFittedChannel(object, channel);
    } else {
        object.requireOnly({"position", "fitted"});
    }
    return channel;
}

std::vector<ChannelSnapshot> readChannels(const JsonMember& list) {
    std::vector<ChannelSnapshot> channels;
    for (const JsonMember& object : list.elements()) {
        if (channels.size() == ORVEX_MAX_CHANNEL) {
            object.fail("a device has at most 16 positions");
        }
        channels.push_back(readChannel(object, static_cast<int>(channels.size()) + 1));
    }
    return channels;
}

LampSnapshot readLamp(const JsonMember& object) {
    object.requireOnly({"hours", "percent", "minimum", "temperature"});
    LampSnapshot lamp;
    lamp.hours = object["hours"].integer(0);
    lamp.intensity = object["percent"].integer(0, kLargestPercent);
    if (object.has("minimum")) {
        lamp.minimum = object["minimum"].integer(0, kLargestPercent);
    }
    if (object.has("temperature")) {
        lamp.temperature = object["temperature"].integer();
    }
    return lamp;
}

}  // namespace

Snapshot snapshotFromJson(const nlohmann::json& object) {
    const JsonMember whole(object);
    whole.requireOnly({"model", "type", "port", "firmware", "serial", "unitStatus", "capabilities",
                       "channels", "lamp"});
    Snapshot snapshot;
    snapshot.type = readModel(whole);
    snapshot.port = whole.has("port") ? whole["port"].text() : "";
    snapshot.firmware = whole["firmware"].text();
    snapshot.serial = whole["serial"].isNull() ? "" : whole["serial"].text();
    snapshot.unitStatus = whole.has("unitStatus") ? whole["unitStatus"].text() : "";
    snapshot.capabilities = readCapabilities(whole["capabilities"]);
    if (speaksLampCommands(snapshot.type)) {
        snapshot.lamp = readLamp(whole["lamp"]);
    } else {
        snapshot.channels = readChannels(whole["channels"]);
    }
    const char* foreign = snapshot.lamp ? "channels" : "lamp";
    if (whole.has(foreign)) {
        whole[foreign].fail("a " + modelName(snapshot.type) + " has none");
    }
    return snapshot;
}

}  // namespace orvex::tools
