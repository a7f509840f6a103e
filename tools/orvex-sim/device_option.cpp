#include "tools/orvex-sim/device_option.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>
#include <vector>

#include "tools/common/models.h"
#include "tools/common/nearest.h"
#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

namespace {

constexpr int kLongestWavelength = 2000;
constexpr int kFullIntensity = 1000;
constexpr int kHottest = 200;
constexpr int kLongestTime = 600'000;
constexpr int kMostHours = 1'000'000;

/// A part of the option's text.
struct Piece {
    const std::string* option;
    std::string_view text;

    [[noreturn]] void fail(const std::string& problem) const {
        const auto place = static_cast<std::size_t>(text.data() - option->data()) + 1;
        throw Failure(kBadInput, "--device \"" + *option + "\", character " +
                                     std::to_string(place) + ": " + problem);
    }
    [[nodiscard]] Piece from(std::size_t start) const { return {option, text.substr(start)}; }
};

std::vector<Piece> split(const Piece& whole, char separator) {
    std::vector<Piece> pieces;
    for (Piece rest = whole;;) {
        const std::size_t end = std::min(rest.text.find(separator), rest.text.size());
        pieces.push_back({rest.option, rest.text.substr(0, end)});
        if (end == rest.text.size()) {
            return pieces;
        }
        rest = rest.from(end + 1);
    }
}

int number(const Piece& piece, int least, int most) {
    int value = 0;
    const char* const end = piece.text.data() + piece.text.size();
    const auto [stop, error] = std::from_chars(piece.text.data(), end, value);
    if (error != std::errc{} || stop != end || value < least || value > most) {
        piece.fail("\"" + std::string(piece.text) + "\" is no number from " +
                   std::to_string(least) + " to " + std::to_string(most));
    }
    return value;
}

std::vector<int> numbers(const Piece& list, int least, int most) {
    std::vector<int> values;
    for (const Piece& piece : split(list, '/')) {
        values.push_back(number(piece, least, most));
    }
    return values;
}

std::vector<int> defaultWavelengths(OrvexType model) {
    sim::DeviceSetup setup;
    setup.model = model;
    std::vector<int> wavelengths;
    for (const sim::Channel& channel : sim::initialState(setup).channels) {
        wavelengths.push_back(channel.wavelength);
    }
    return wavelengths;
}

void readPositions(const Piece& value, sim::DeviceSetup& setup) {
    const auto count = static_cast<std::size_t>(number(value, 1, ORVEX_MAX_CHANNEL));
    if (setup.wavelengths.size() > count) {
        value.fail("there are more wavelengths than that");
    }
    if (setup.wavelengths.empty()) {
        setup.wavelengths = defaultWavelengths(setup.model);
    }
    setup.wavelengths.resize(count, ORVEX_EMPTY_POSITION);
}

void readWavelengths(const Piece& value, sim::DeviceSetup& setup) {
    std::vector<int> wavelengths;
    for (const Piece& piece : split(value, '/')) {
        const bool isEmpty = piece.text == "empty";
        wavelengths.push_back(isEmpty ? ORVEX_EMPTY_POSITION
                                      : number(piece, 1, kLongestWavelength));
    }
    if (wavelengths.size() > ORVEX_MAX_CHANNEL) {
        value.fail("a device has at most 16 positions");
    }
    setup.wavelengths = wavelengths;
}

void readNames(const Piece& value, sim::DeviceSetup& setup) {
    setup.names.clear();
    for (const Piece& piece : split(value, '/')) {
        setup.names.emplace_back(piece.text);
    }
}

void readIntensities(const Piece& value, sim::DeviceSetup& setup) {
    setup.intensities = numbers(value, 0, kFullIntensity);
}

void readTemperatures(const Piece& value, sim::DeviceSetup& setup) {
    setup.temperatures = numbers(value, 0, kHottest);
}

void readOn(const Piece& value, sim::DeviceSetup& setup) {
    const auto wavelengths =
        setup.wavelengths.empty() ? defaultWavelengths(setup.model) : setup.wavelengths;
    setup.ledsOn.clear();
    for (const Piece& piece : split(value, '/')) {
        const int position = number(piece, 1, static_cast<int>(wavelengths.size()));
        if (wavelengths[static_cast<std::size_t>(position) - 1] == ORVEX_EMPTY_POSITION) {
            piece.fail("position " + std::string(piece.text) + " has no LED");
        }
        setup.ledsOn.push_back(position);
    }
}

void readSerial(const Piece& value, sim::DeviceSetup& setup) {
    setup.serialText = value.text;
}

void readFirmware(const Piece& value, sim::DeviceSetup& setup) {
    setup.softwareVersion = value.text;
}

void readMinimum(const Piece& value, sim::DeviceSetup& setup) {
    setup.minimum = number(value, 0, kFullIntensity);
}

void readHours(const Piece& value, sim::DeviceSetup& setup) {
    setup.lampHours = number(value, 0, kMostHours);
}

void readSettle(const Piece& value, sim::DeviceSetup& setup) {
    setup.settleDelay = std::chrono::milliseconds(number(value, 0, kLongestTime));
}

enum class For { all, leds, lamps };

struct Member {
    const char* name;
    For models;
    const char* meaning;
    void (*read)(const Piece& value, sim::DeviceSetup& setup);
};

// In the order in which they are applied, whatever their order in the option.
// clang-format off
constexpr Member kMembers[] = {
    {"wavelengths",  For::leds,  "365/470/empty: nm, one for each position",      readWavelengths},
    {"positions",    For::leds,  "how many; 1 to 16",                             readPositions},
    {"names",        For::leds,  "UV/BLUE: one for each position",                readNames},
    {"on",           For::leds,  "1/3: the positions that are on",                readOn},
    {"intensities",  For::all,   "450/200: tenths of a per cent; lamps: one",     readIntensities},
    {"temperatures", For::all,   "31/29: degrees; lamps: one",                    readTemperatures},
    {"minimum",      For::all,   "least intensity, tenths of a per cent",         readMinimum},
    {"serial",       For::all,   "serial text",                                   readSerial},
    {"firmware",     For::all,   "software version",                              readFirmware},
    {"hours",        For::lamps, "lamp hours",                                    readHours},
    {"settle",       For::leds,  "ms until a group reports that it was switched", readSettle},
};
// clang-format on

std::vector<std::string> memberNames() {
    std::vector<std::string> names;
    for (const Member& member : kMembers) {
        names.emplace_back(member.name);
    }
    return names;
}

/// A member with its value: "serial" and "TA-1".
struct Assignment {
    Piece name;
    Piece value;
};

Assignment readAssignment(const Piece& piece, OrvexType model) {
    const std::size_t sign = piece.text.find('=');
    if (sign == std::string_view::npos) {
        piece.fail("\"" + std::string(piece.text) + "\" is not of the form MEMBER=VALUE");
    }
    const Piece name{piece.option, piece.text.substr(0, sign)};
    const auto* const member =
        std::find_if(std::begin(kMembers), std::end(kMembers),
                     [&name](const Member& candidate) { return candidate.name == name.text; });
    if (member == std::end(kMembers)) {
        name.fail("there is no member \"" + std::string(name.text) + "\"" +
                  suggestion(name.text, memberNames()));
    }
    const For family = speaksLampCommands(model) ? For::lamps : For::leds;
    if (member->models != For::all && member->models != family) {
        name.fail("a " + modelName(model) + " has no \"" + std::string(name.text) + "\"");
    }
    return {name, piece.from(sign + 1)};
}

std::vector<Assignment> readAssignments(const std::vector<Piece>& pieces, OrvexType model) {
    std::vector<Assignment> assignments;
    for (auto piece = pieces.begin() + 1; piece != pieces.end(); ++piece) {
        const Assignment next = readAssignment(*piece, model);
        for (const Assignment& earlier : assignments) {
            if (earlier.name.text == next.name.text) {
                next.name.fail("\"" + std::string(next.name.text) + "\" is given twice");
            }
        }
        assignments.push_back(next);
    }
    return assignments;
}

}  // namespace

DevicePlan readDeviceOption(const std::string& text) {
    const std::vector<Piece> pieces = split({&text, text}, ',');
    const auto model = modelNamed(pieces.front().text);
    if (!model) {
        pieces.front().fail(unknownModelText(pieces.front().text));
    }
    DevicePlan plan;
    plan.setup.model = *model;
    const std::vector<Assignment> assignments = readAssignments(pieces, *model);
    for (const Member& member : kMembers) {
        for (const Assignment& assignment : assignments) {
            if (assignment.name.text == member.name) {
                member.read(assignment.value, plan.setup);
            }
        }
    }
    return plan;
}

std::string deviceOptionHelp() {
    std::string text = "A DEVICE is a model, followed by members: MODEL,MEMBER=VALUE,…\n";
    for (const Member& member : kMembers) {
        const std::string name = member.name;
        text += "  " + name + std::string(14 - name.size(), ' ') + member.meaning + "\n";
    }
    return text;
}

}  // namespace orvex::tools
