#include <nlohmann/json.hpp>

#include "tools/common/capabilities.h"
#include "tools/common/models.h"
#include "tools/common/snapshot.h"

namespace orvex::tools {

namespace {

using json = nlohmann::ordered_json;

constexpr double kRawPerPercent = 10.0;

json toJson(const ChannelSnapshot& channel) {
    if (!channel.fitted) {
        return {{"position", channel.position}, {"fitted", false}};
    }
    return {{"position", channel.position},
            {"name", channel.name},
            {"wavelength", channel.wavelength},
            {"percent", channel.intensity / kRawPerPercent},
            {"raw", channel.intensity},
            {"minimum", channel.minimum},
            {"maximum", channel.maximum},
            {"step", channel.step},
            {"temperature", channel.temperature},
            {"group", channel.group},
            {"on", channel.on}};
}

json toJson(const LampSnapshot& lamp) {
    json object = {{"hours", lamp.hours}, {"percent", lamp.intensity}};
    if (lamp.minimum) {
        object["minimum"] = *lamp.minimum;
    }
    if (lamp.temperature) {
        object["temperature"] = *lamp.temperature;
    }
    return object;
}

json capabilityNames(std::uint32_t bits) {
    json names = json::array();
    for (const Capability& capability : kCapabilities) {
        if ((bits & capability.bit) != 0) {
            names.push_back(capability.name);
        }
    }
    return names;
}

}  // namespace

json toJson(const Snapshot& snapshot) {
    json object = {{"model", modelName(snapshot.type)},
                   {"type", snapshot.type},
                   {"port", snapshot.port},
                   {"firmware", snapshot.firmware},
                   {"serial", snapshot.serial.empty() ? json() : json(snapshot.serial)},
                   {"unitStatus", snapshot.unitStatus},
                   {"capabilities", capabilityNames(snapshot.capabilities)}};
    if (!speaksLampCommands(snapshot.type)) {
        json& channels = object["channels"] = json::array();
        for (const ChannelSnapshot& channel : snapshot.channels) {
            channels.push_back(toJson(channel));
        }
    }
    if (snapshot.lamp) {
        object["lamp"] = toJson(*snapshot.lamp);
    }
    return object;
}

}  // namespace orvex::tools
