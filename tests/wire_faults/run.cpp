#include "tests/wire_faults/run.h"

#include <algorithm>
#include <set>

#include "include/qtr_orvex.h"
#include "tests/support/light.h"
#include "tests/support/waiting.h"
#include "tests/wire_faults/expected_record.h"

namespace orvex_test {

namespace {

const std::set<std::uint32_t> kStatusCodes{
    ORVEX_OK,
    ORVEX_ERR_UNSPECIFIED,
    ORVEX_ERR_INVALID_ARG,
    ORVEX_ERR_INVALID_HANDLE,
    ORVEX_ERR_BUFFER_TOO_SMALL,
    ORVEX_ERR_NO_HANDLE,
    ORVEX_ERR_NOT_SUPPORTED,
    ORVEX_ERR_RECV,
    ORVEX_ERR_SEND,
    ORVEX_ERR_STRUCT_SIZE,
    ORVEX_ERR_NO_DEVICE,
    ORVEX_ERR_NO_RESPONSE,
    ORVEX_ERR_IO,
    ORVEX_ERR_MAX_CHANNEL,
    ORVEX_ERR_NOT_CONNECTED,
};

const char* nameOf(StepKind kind) {
    switch (kind) {
        case StepKind::open:
            return "open";
        case StepKind::writeRecord:
            return "writing a record";
        case StepKind::switchOff:
            return "switching off";
        case StepKind::switchOn:
            return "switching on";
        case StepKind::command:
            return "a command";
        case StepKind::close:
            return "close";
    }
    return "";
}

std::string nameOf(const Scenario& scenario, const std::optional<Injection>& injection) {
    if (!injection) {
        return scenario.name;
    }
    return std::string(scenario.name) + ", " + nameOf(injection->kind) + " at exchange " +
           std::to_string(injection->exchange) + (injection->forEver ? " and later" : "");
}

/// Without the repetitions of a status query while a group settles.
std::vector<std::string> withoutRepetitions(const std::vector<Exchange>& exchanges) {
    std::vector<std::string> requests;
    for (const Exchange& exchange : exchanges) {
        if (requests.empty() || exchange.request != "us?" || requests.back() != "us?") {
            requests.push_back(exchange.request);
        }
    }
    return requests;
}

std::string inMilliseconds(std::chrono::nanoseconds time) {
    return std::to_string(time.count() / 1'000'000) + " ms";
}

}  // namespace

Run::Run(const Scenario& scenario, std::optional<Injection> injection, const SchedulingDelay& delay)
    : scenario_(scenario),
      injection_(injection),
      delay_(delay),
      name_(nameOf(scenario, injection)),
      light_(scenario.setup, monitor_.observer()) {
    connection_.port = light_.device.path();
    if (injection) {
        const auto any = orvex::sim::onAny();
        light_.device.addFault(
            injection->forEver ? any.from(injection->exchange) : any.nth(injection->exchange),
            faultOf(injection->kind, injection->exchange));
    }
}

void Run::go() {
    for (const Step& step : scenario_.steps) {
        runStep(step);
    }
    checkRequests();
    recover();
}

void Run::runStep(const Step& step) {
    const std::size_t first = monitor_.count();
    callStart_ = first;
    connection_.wasPluggedIn = light_.device.isPluggedIn();
    const auto lateBefore = delay_.soFar();
    const auto begin = Clock::now();
    const Outcome outcome = perform(step, light_.handle);
    const auto taken = Clock::now() - begin;
    ++calls_;
    connection_.isPluggedIn = light_.device.isPluggedIn();
    compare(step, outcome, first);
    judgeTime(step, monitor_.since(first), taken, delay_.soFar() - lateBefore);
    if (injection_ && !injection_->forEver) {
        light_.device.plugIn();
    }
}

void Run::compare(const Step& step, const Outcome& outcome, std::size_t first) {
    if (kStatusCodes.count(outcome.status) == 0) {
        complain(nameOf(step.kind), "unknown status " + std::to_string(outcome.status));
    }
    Connection after = connection_;
    std::vector<std::string> found;
    // The device notes what it has sent a moment after the library may have it.
    const auto giveUp = Clock::now() + std::chrono::seconds(2);
    do {
        after = connection_;
        found = complaints(step, outcome, monitor_.since(first), after);
    } while (!found.empty() && Clock::now() < giveUp);
    connection_ = after;
    for (const std::string& text : found) {
        complain(nameOf(step.kind), text);
    }
    std::uint32_t opens = 0;
    if (ORVEX_GetDeviceInfo(light_.handle, nullptr, nullptr, 0, &opens) != ORVEX_OK ||
        opens != connection_.opens) {
        complain(nameOf(step.kind), "opens: " + std::to_string(opens));
    }
}

void Run::judgeTime(const Step& step, const std::vector<Exchange>& exchanges,
                    std::chrono::nanoseconds taken, std::chrono::nanoseconds late) {
    // Less than one more attempt to read, 0.7 s.
    constexpr auto kTolerance = std::chrono::milliseconds(400);
    const bool hungUp = connection_.wasPluggedIn && !connection_.isPluggedIn;
    const auto limit = longest(step, exchanges);
    if (taken > limit + kTolerance + late) {
        untimely_.push_back(name_ + ", " + nameOf(step.kind) + ": " + inMilliseconds(taken) +
                            " taken, limit " + inMilliseconds(limit) + ", late " +
                            inMilliseconds(late));
    }
    if (const auto least = shortest(exchanges, hungUp); taken < least) {
        untimely_.push_back(name_ + ", " + nameOf(step.kind) + ": only " + inMilliseconds(taken) +
                            " taken of " + inMilliseconds(least));
    }
}

/// Up to the fault everything is as it is without one, and the fault has been met.
void Run::checkRequests() {
    const std::vector<Exchange> exchanges = monitor_.since(0);
    std::vector<std::string> requests = withoutRepetitions(exchanges);
    std::vector<std::string> expected = scenario_.requests;
    if (injection_) {
        const std::size_t met = std::min<std::size_t>(injection_->exchange, exchanges.size());
        const bool isMet = met == injection_->exchange;
        faulty_ = isMet ? (injection_->forEver ? exchanges.size() - met + 1 : 1) : 0;
        requests = withoutRepetitions(
            {exchanges.begin(), exchanges.begin() + static_cast<std::ptrdiff_t>(met)});
        expected.resize(std::min(requests.size(), expected.size()));
        if (!isMet) {
            complain("the whole", "the fault was not met");
        }
    }
    if (requests != expected) {
        std::string text = "requests:";
        for (const std::string& request : requests) {
            text += " " + request;
        }
        complain("the whole", text);
    }
}

void Run::recover() {
    light_.device.clearFaults();
    light_.device.plugIn();
    light_.device.change([](orvex::sim::DeviceState& state) {
        for (orvex::sim::Channel& channel : state.channels) {
            channel.settlesAt = {};
        }
    });
    checkDescriptors();
    // After a failed open and a close the first open counts from below zero to none.
    for (int attempt = 0; connection_.opens != 1 && attempt < 2; ++attempt) {
        runStep({StepKind::open});
    }
    if (connection_.opens != 1) {
        complain("the end", "the device cannot be opened");
        return;
    }
    checkRecord();
    checkDescriptors();
    runStep({StepKind::command, "GetSoftwareVersion"});
    runStep({StepKind::close});
    checkDescriptors();
}

void Run::checkRecord() {
    OrvexStruct record{};
    record.iSize = sizeof record;
    if (ORVEX_GetOVStruct(light_.handle, &record) != ORVEX_OK) {
        complain("the end", "no record");
    }
    for (const std::string& text :
         differences(record, scenario_.setup, light_.device.state(), light_.handle)) {
        complain("the record read in the end", text);
    }
}

/// The simulated device holds its terminal open itself, once.
void Run::checkDescriptors() {
    const std::size_t expected = connection_.hasLink && !connection_.linkIsDead ? 2 : 1;
    const std::size_t found = openDescriptors(light_.device);
    if (found != expected) {
        complain("the end", std::to_string(found) + " descriptors on the port");
    }
}

void Run::complain(const std::string& step, const std::string& text) {
    wrong_.push_back(name_ + ", " + step + ": " + text);
}

void Run::helpToSettle() {
    constexpr std::size_t kMany = 20;
    const std::size_t since = monitor_.count() - std::min(monitor_.count(), callStart_.load());
    if (helps_ == 0 && since > kMany) {
        light_.device.clearFaults();
        ++helps_;
    } else if (helps_ == 1 && since > 2 * kMany) {
        // The device and the cached state differ: only a failing query ends the call.
        light_.device.addFault(orvex::sim::onCommand("GetUnitStatus"), orvex::sim::silence());
        ++helps_;
    }
}

}  // namespace orvex_test
