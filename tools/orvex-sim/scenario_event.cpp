#include "tools/orvex-sim/scenario_event.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string>

#include "tools/common/models.h"
#include "tools/common/nearest.h"

namespace orvex::tools {

namespace {

using std::chrono::milliseconds;

constexpr double kLongestTime = 1e6;
constexpr int kLongestDelay = 3'600'000;
constexpr int kMostBytes = 1'000'000;
constexpr int kMostRequests = 1'000'000'000;

milliseconds readMilliseconds(const JsonMember& member) {
    return milliseconds(member.integer(0, kLongestDelay));
}

milliseconds readTime(const JsonMember& entry) {
    if (!entry.has("at")) {
        return milliseconds(0);
    }
    const double seconds = entry["at"].number();
    if (!(seconds >= 0 && seconds <= kLongestTime)) {
        entry["at"].fail("is no time in seconds, 0 or more");
    }
    return milliseconds(std::llround(seconds * 1000));
}

std::vector<std::string> namesOf(const std::vector<DevicePlan>& devices) {
    std::vector<std::string> names;
    for (const DevicePlan& device : devices) {
        if (!device.name.empty()) {
            names.push_back(device.name);
        }
    }
    return names;
}

std::size_t deviceNamed(const JsonMember& member, const std::vector<DevicePlan>& devices) {
    const std::string name = member.text();
    const auto found =
        std::find_if(devices.begin(), devices.end(),
                     [&name](const DevicePlan& device) { return device.name == name; });
    if (name.empty() || found == devices.end()) {
        member.fail("there is no device \"" + name + "\"" + suggestion(name, namesOf(devices)));
    }
    return static_cast<std::size_t>(found - devices.begin());
}

/// A number from 1, a name, or nothing for all devices.
std::vector<std::size_t> readDevices(const nlohmann::json& object, const JsonMember& entry,
                                     const std::vector<DevicePlan>& devices) {
    if (!entry.has("device")) {
        std::vector<std::size_t> all(devices.size());
        std::iota(all.begin(), all.end(), std::size_t{0});
        return all;
    }
    const JsonMember member = entry["device"];
    if (object["device"].is_string()) {
        return {deviceNamed(member, devices)};
    }
    const int number = member.integer(1, static_cast<int>(devices.size()));
    return {static_cast<std::size_t>(number) - 1};
}

/// A fault of a scenario: what it makes of a reply, and the members that say more of it.
struct Kind {
    const char* name;
    sim::Fault (*read)(const JsonMember& entry);
};

sim::Fault readSlow(const JsonMember& entry) {
    return sim::slowly(readMilliseconds(entry["bytePauseMs"]));
}

sim::Fault readReply(const JsonMember& entry) {
    return sim::scripted(entry["bytes"].text());
}

sim::Fault readEndless(const JsonMember& entry) {
    const bool isLimited = entry.has("count");
    return isLimited ? sim::endless(static_cast<std::size_t>(entry["count"].integer(1, kMostBytes)))
                     : sim::endless();
}

sim::Fault readLate(const JsonMember& entry) {
    return sim::delayed(readMilliseconds(entry["delayMs"]));
}

constexpr Kind kKinds[] = {
    {"error", [](const JsonMember&) { return sim::errorReply(); }},
    {"silent", [](const JsonMember&) { return sim::silence(); }},
    {"late", readLate},
    {"slow", readSlow},
    {"reply", readReply},
    {"unterminated", [](const JsonMember&) { return sim::unterminated(); }},
    {"endless", readEndless},
    {"hangUp", [](const JsonMember&) { return sim::hangUp(); }},
};

std::vector<std::string> kindNames() {
    std::vector<std::string> names;
    for (const Kind& kind : kKinds) {
        names.emplace_back(kind.name);
    }
    return names;
}

sim::Fault readFault(const JsonMember& entry) {
    const JsonMember name = entry["fault"];
    for (const Kind& kind : kKinds) {
        if (name.text() == kind.name) {
            sim::Fault fault = kind.read(entry);
            if (entry.has("delayMs")) {
                fault.delay = readMilliseconds(entry["delayMs"]);
            }
            return fault;
        }
    }
    name.fail("there is no fault \"" + name.text() + "\"" + suggestion(name.text(), kindNames()));
}

/// Requires a command of every device that the fault befalls.
void requireCommand(const JsonMember& member, const std::vector<std::size_t>& befallen,
                    const std::vector<DevicePlan>& devices) {
    for (const std::size_t device : befallen) {
        const OrvexType model = devices[device].setup.model;
        std::vector<std::string> names;
        for (const auto& [name, request] : commandsOfModel(model)) {
            names.push_back(name);
        }
        if (std::find(names.begin(), names.end(), member.text()) == names.end()) {
            member.fail("a " + modelName(model) + " has no command \"" + member.text() + "\"" +
                        suggestion(member.text(), names));
        }
    }
}

sim::Trigger readRequests(const JsonMember& entry, const Event& event,
                          const std::vector<DevicePlan>& devices) {
    if (entry.has("command") && entry.has("request")) {
        entry["request"].fail("cannot stand beside \"command\"");
    }
    if (entry.has("command")) {
        requireCommand(entry["command"], event.devices, devices);
        return sim::onCommand(entry["command"].text());
    }
    return entry.has("request") ? sim::onRequest(entry["request"].text()) : sim::onAny();
}

sim::Trigger readTrigger(const JsonMember& entry, const Event& event,
                         const std::vector<DevicePlan>& devices) {
    const sim::Trigger trigger = readRequests(entry, event, devices);
    if (entry.has("nth") && entry.has("from")) {
        entry["from"].fail("cannot stand beside \"nth\"");
    }
    if (entry.has("nth")) {
        return trigger.nth(static_cast<unsigned>(entry["nth"].integer(1, kMostRequests)));
    }
    const int first = entry.has("from") ? entry["from"].integer(1, kMostRequests) : 1;
    return trigger.from(static_cast<unsigned>(first));
}

/// Which members an entry may have depends on its fault.
void requireFaultMembers(const JsonMember& entry) {
    const std::string fault = entry["fault"].text();
    const struct {
        const char* member;
        const char* fault;
    } bound[] = {{"bytePauseMs", "slow"}, {"bytes", "reply"}, {"count", "endless"}};
    for (const auto& [member, only] : bound) {
        if (entry.has(member) && fault != only) {
            entry[member].fail("belongs to \"fault\": \"" + std::string(only) + "\" alone");
        }
    }
}

Event::Kind readDeed(const JsonMember& deed) {
    const std::string text = deed.text();
    if (text == "plug") {
        return Event::Kind::plug;
    }
    if (text == "unplug") {
        return Event::Kind::unplug;
    }
    if (text == "clearFaults") {
        return Event::Kind::clearFaults;
    }
    deed.fail("\"" + text + "\" is none of plug, unplug, clearFaults");
}

}  // namespace

Event readScenarioEvent(const nlohmann::json& object, const JsonMember& entry,
                        const std::vector<DevicePlan>& devices) {
    entry.requireOnly({"at", "device", "do", "fault", "command", "request", "nth", "from",
                       "delayMs", "bytePauseMs", "bytes", "count"});
    Event event;
    event.at = readTime(entry);
    event.devices = readDevices(object, entry, devices);
    if (entry.has("do") == entry.has("fault")) {
        entry.fail("needs either \"do\" or \"fault\"");
    }
    if (entry.has("do")) {
        entry.requireOnly({"at", "device", "do"});
        event.kind = readDeed(entry["do"]);
    } else {
        event.kind = Event::Kind::fault;
        event.fault = readFault(entry);
        requireFaultMembers(entry);
        event.trigger = readTrigger(entry, event, devices);
    }
    return event;
}

}  // namespace orvex::tools
