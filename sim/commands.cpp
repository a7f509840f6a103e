#include "sim/commands.h"

#include <algorithm>
#include <charconv>

#include "sim/settings.h"

namespace orvex::sim {

namespace {

using Reply = std::optional<std::string>;

constexpr const char* kErrorReply = "e\r";

Reply tellSetting(const DeviceState& state, const Setting& setting) {
    const auto found = state.settings.find(setting.getter);
    return found != state.settings.end() ? Reply(join(found->second)) : std::nullopt;
}

Reply changeSetting(DeviceState& state, const Setting& setting, std::string_view value) {
    const auto found = state.settings.find(setting.getter);
    if (found == state.settings.end()) {
        return std::nullopt;
    }
    const auto numbers = parseList(value, found->second.size(), setting.maximum);
    if (!numbers) {
        return std::nullopt;
    }
    std::transform(numbers->begin(), numbers->end(), found->second.begin(),
                   [](int number) { return std::to_string(number); });
    return "";
}

/// What one of the names that a request may stand for makes of its value; nothing when the name
/// wants a value and there is none, or the reverse.
Reply tryName(DeviceState& state, std::string_view name, std::string_view value) {
    const auto& commands = isLedModel(state.model) ? ledCommands() : lampCommands();
    const auto command =
        std::find_if(commands.begin(), commands.end(),
                     [name](const Command& candidate) { return candidate.name == name; });
    if (command != commands.end()) {
        return command->takesValue != value.empty() ? command->action(state, value) : std::nullopt;
    }
    if (const Setting* told = settingToldBy(name); told != nullptr && value.empty()) {
        return tellSetting(state, *told);
    }
    if (const Setting* set = settingSetBy(name); set != nullptr) {
        return changeSetting(state, *set, value);
    }
    return std::nullopt;
}

}  // namespace

std::string carryOut(DeviceState& state, const Match& match) {
    for (const std::string& name : match.names) {
        if (const Reply reply = tryName(state, name, match.value)) {
            return *reply + "\r";
        }
    }
    return kErrorReply;
}

std::optional<int> parseOne(std::string_view text, int maximum) {
    int number = -1;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    const bool valid = error == std::errc{} && stop == end && number >= 0 && number <= maximum;
    return valid ? std::optional(number) : std::nullopt;
}

std::optional<std::vector<int>> parseList(std::string_view text, int maximum) {
    std::vector<int> numbers;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const auto number = parseOne(text.substr(start, end - start), maximum);
        if (!number) {
            return std::nullopt;
        }
        numbers.push_back(*number);
        start = end + 1;
    }
    return numbers;
}

std::optional<std::vector<int>> parseList(std::string_view text, std::size_t count, int maximum) {
    auto numbers = parseList(text, maximum);
    return numbers && numbers->size() == count ? numbers : std::nullopt;
}

std::string join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (&text == &texts.front() ? "" : ",") + text;
    }
    return joined;
}

Reply connect(DeviceState& state, std::string_view /*value*/) {
    state.connected = true;
    return "";
}

Reply lockFrontPanel(DeviceState& state, std::string_view /*value*/) {
    state.frontPanelLocked = true;
    return "";
}

Reply unlockFrontPanel(DeviceState& state, std::string_view /*value*/) {
    state.frontPanelLocked = false;
    return "";
}

Reply clearAlarm(DeviceState& state, std::string_view /*value*/) {
    state.alarm = false;
    return "";
}

Reply tellSoftwareVersion(DeviceState& state, std::string_view /*value*/) {
    return state.softwareVersion;
}

Reply tellSerialText(DeviceState& state, std::string_view /*value*/) {
    return state.serialText;
}

}  // namespace orvex::sim
