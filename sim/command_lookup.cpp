#include "sim/command_lookup.h"

#include <algorithm>
#include <stdexcept>

#include "device/model_table.h"

namespace orvex::sim {

namespace {

/// The length of a command's text without the letters that only stand for its value: 3 for
/// "ip=wwww,xxxx,yyyy,zzzz" and "ge=x", all of it for "is=1".
std::size_t lengthWithoutTemplate(std::string_view text) {
    const std::size_t value = text.find('=') + 1;
    const bool isTemplate =
        value != 0 && text.find_first_not_of("wxyz,", value) == std::string_view::npos;
    return isTemplate ? value : text.size();
}

}  // namespace

CommandTable commandsOfModel(OrvexType model) {
    const Model* const known = findModel(model);
    if (known == nullptr) {
        throw std::invalid_argument("There is no such model to simulate");
    }
    return allCommandsOf(*known);
}

CommandLookup::CommandLookup(OrvexType model) {
    for (const auto& [name, prefix] : commandsOfModel(model)) {
        const std::string text = prefix.substr(0, prefix.find('\r'));
        add(text, name);
        const std::string plain = text.substr(0, lengthWithoutTemplate(text));
        if (plain != text) {
            add(plain, name);
        }
    }
    std::stable_sort(entries_.begin(), entries_.end(),
                     [](const Entry& a, const Entry& b) { return a.text.size() > b.text.size(); });
}

void CommandLookup::add(const std::string& text, const std::string& name) {
    const auto known = std::find_if(entries_.begin(), entries_.end(),
                                    [&text](const Entry& entry) { return entry.text == text; });
    if (known == entries_.end()) {
        entries_.push_back({text, {name}});
    } else {
        known->names.push_back(name);
    }
}

Match CommandLookup::find(std::string_view request) const {
    for (const Entry& entry : entries_) {
        if (request.substr(0, entry.text.size()) == entry.text) {
            return {entry.names, std::string(request.substr(entry.text.size()))};
        }
    }
    return {};
}

}  // namespace orvex::sim
