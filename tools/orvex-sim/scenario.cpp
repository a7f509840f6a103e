#include "tools/orvex-sim/scenario.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <utility>

#include "tools/common/json_member.h"
#include "tools/orvex-sim/device_option.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/scenario_device.h"
#include "tools/orvex-sim/scenario_event.h"
#include "tools/orvex-sim/text_file.h"

namespace orvex::tools {

namespace {

using nlohmann::json;

/// Refuses an object with the same member twice, of which the parser would take the last.
class MembersOnce {
  public:
    bool operator()(int /*depth*/, json::parse_event_t event, json& parsed) {
        if (event == json::parse_event_t::object_start) {
            open_.emplace_back();
        } else if (event == json::parse_event_t::object_end) {
            open_.pop_back();
        } else if (event == json::parse_event_t::key) {
            const auto name = parsed.get<std::string>();
            if (!open_.back().insert(name).second) {
                throw std::invalid_argument("member \"" + name + "\" is there twice in one object");
            }
        }
        return true;
    }

  private:
    std::vector<std::set<std::string>> open_;
};

/// "3:14", line and column of a byte, both from 1.
std::string placeIn(const std::string& text, std::size_t byte) {
    const std::string before = text.substr(0, byte);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t start = before.rfind('\n') + 1;
    return std::to_string(line) + ":" + std::to_string(before.size() - start + 1);
}

/// What the parser says, without its own name and numbers.
std::string reasonOf(const json::parse_error& error) {
    const std::string text = error.what();
    const std::size_t start = text.find("syntax error");
    return start != std::string::npos ? text.substr(start) : text;
}

json parse(const std::string& path) {
    const std::string text = readText(path);
    try {
        return json::parse(text, MembersOnce());
    } catch (const json::parse_error& e) {
        const std::size_t byte = e.byte > 0 ? e.byte - 1 : 0;
        throw Failure(kBadInput, path + ":" + placeIn(text, byte) + ": " + reasonOf(e));
    } catch (const json::exception& e) {
        throw Failure(kBadInput, path + ": " + e.what());
    }
}

void requireDifferentNames(const JsonMember& list, const std::vector<DevicePlan>& devices) {
    const std::string& last = devices.back().name;
    const auto same = std::count_if(devices.begin(), devices.end(), [&last](const auto& device) {
        return !last.empty() && device.name == last;
    });
    if (same > 1) {
        list.elements()[devices.size() - 1]["simulator"]["name"].fail("\"" + last +
                                                                      "\" is given twice");
    }
}

Scenario readMembers(const json& object) {
    const JsonMember root(object);
    root.requireOnly({"devices", "timeline"});
    Scenario scenario;
    const JsonMember list = root["devices"];
    for (const JsonMember& device : list.elements()) {
        const json& value = object["devices"][scenario.devices.size()];
        scenario.devices.push_back(readScenarioDevice(value, device));
        requireDifferentNames(list, scenario.devices);
    }
    if (scenario.devices.empty()) {
        list.fail("holds no device");
    }
    if (root.has("timeline")) {
        for (const JsonMember& entry : root["timeline"].elements()) {
            const json& value = object["timeline"][scenario.timeline.size()];
            scenario.timeline.push_back(readScenarioEvent(value, entry, scenario.devices));
        }
    }
    return scenario;
}

}  // namespace

Scenario readScenario(const std::string& path) {
    try {
        return readMembers(parse(path));
    } catch (const std::invalid_argument& e) {
        throw Failure(kBadInput, path + ": " + e.what());
    }
}

Scenario scenarioOf(const std::vector<std::string>& deviceOptions, const std::string& path) {
    Scenario all;
    for (const std::string& option : deviceOptions) {
        all.devices.push_back(readDeviceOption(option));
    }
    const std::size_t before = all.devices.size();
    if (!path.empty()) {
        Scenario scenario = readScenario(path);
        std::move(scenario.devices.begin(), scenario.devices.end(),
                  std::back_inserter(all.devices));
        for (Event& event : scenario.timeline) {
            for (std::size_t& device : event.devices) {
                device += before;
            }
            all.timeline.push_back(event);
        }
    }
    if (all.devices.empty()) {
        throw Failure(kBadInput, "no devices: give --device or --scenario");
    }
    return all;
}

}  // namespace orvex::tools
