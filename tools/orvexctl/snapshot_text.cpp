#include "tools/orvexctl/snapshot_text.h"

#include <ostream>
#include <string>

#include "tools/common/capabilities.h"
#include "tools/common/models.h"
#include "tools/orvexctl/intensity_words.h"
#include "tools/orvexctl/table.h"
#include "tools/orvexctl/terminal.h"

namespace orvex::tools {

namespace {

constexpr std::size_t kLabelWidth = 14;

void printFact(std::ostream& out, std::string label, const std::string& value) {
    label.resize(kLabelWidth, ' ');
    out << "  " << label << value << '\n';
}

std::string capabilityWords(std::uint32_t bits) {
    std::string words;
    for (const Capability& capability : kCapabilities) {
        if ((bits & capability.bit) != 0) {
            words += (words.empty() ? "" : ", ") + std::string(capability.words);
        }
    }
    return words.empty() ? "none told" : words;
}

std::string degrees(int temperature) {
    return std::to_string(temperature) + " °C";
}

std::vector<std::string> cellsOf(const ChannelSnapshot& channel) {
    if (!channel.fitted) {
        return {std::to_string(channel.position), "(no LED)"};
    }
    const std::string patch = swatch(channel.wavelength);
    return {std::to_string(channel.position),
            channel.name,
            (patch.empty() ? "" : patch + " ") + std::to_string(channel.wavelength) + " nm",
            percentText(channel.intensity),
            std::to_string(channel.intensity),
            percentText(channel.minimum) + " to " + percentText(channel.maximum),
            channel.step == 0 ? "any" : percentText(channel.step),
            degrees(channel.temperature),
            channel.on ? "on" : "off",
            channel.group == 0 ? "-" : std::to_string(channel.group)};
}

void printChannels(std::ostream& out, const std::vector<ChannelSnapshot>& channels) {
    constexpr Table::Align right = Table::Align::right;
    Table table({{"POS", right},
                 {"NAME"},
                 {"WAVELENGTH", right},
                 {"INTENSITY", right},
                 {"RAW", right},
                 {"LIMITS", right},
                 {"STEP", right},
                 {"TEMPERATURE", right},
                 {"LIGHT"},
                 {"GROUP", right}});
    for (const ChannelSnapshot& channel : channels) {
        table.add(cellsOf(channel));
    }
    out << '\n';
    table.print(out);
}

void printLamp(std::ostream& out, const LampSnapshot& lamp) {
    printFact(out, "Lamp hours", std::to_string(lamp.hours));
    printFact(out, "Intensity", std::to_string(lamp.intensity) + " %");
    if (lamp.minimum) {
        printFact(out, "Minimum", std::to_string(*lamp.minimum) + " %");
    }
    if (lamp.temperature) {
        printFact(out, "Temperature", degrees(*lamp.temperature));
    }
}

}  // namespace

void printSnapshot(std::ostream& out, const Snapshot& snapshot) {
    out << modelName(snapshot.type) << " on " << snapshot.port << '\n';
    printFact(out, "Firmware", snapshot.firmware);
    printFact(out, "Serial", snapshot.serial.empty() ? "not told" : snapshot.serial);
    printFact(out, "Unit status", snapshot.unitStatus);
    printFact(out, "Capabilities", capabilityWords(snapshot.capabilities));
    if (snapshot.lamp) {
        printLamp(out, *snapshot.lamp);
    } else {
        printChannels(out, snapshot.channels);
    }
}

}  // namespace orvex::tools
