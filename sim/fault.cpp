#include "sim/fault.h"

#include <algorithm>
#include <utility>

namespace orvex::sim {

Fault silence() {
    Fault fault;
    fault.silent = true;
    return fault;
}

Fault delayed(std::chrono::milliseconds delay) {
    Fault fault;
    fault.delay = delay;
    return fault;
}

Fault slowly(std::chrono::milliseconds bytePause) {
    Fault fault;
    fault.bytePause = bytePause;
    return fault;
}

Fault errorReply() {
    return scripted("e\r");
}

Fault scripted(std::string bytes) {
    Fault fault;
    fault.reply = std::move(bytes);
    return fault;
}

Fault unterminated() {
    Fault fault;
    fault.bytesOff = 1;
    return fault;
}

Fault endless(std::size_t limit, char byte) {
    Fault fault = scripted(std::string(limit, byte));
    fault.endsAtNextRequest = true;
    return fault;
}

Fault hangUp() {
    Fault fault;
    fault.hangUp = true;
    return fault;
}

Trigger onCommand(std::string name) {
    return {Trigger::Kind::command, std::move(name)};
}

Trigger onRequest(std::string text) {
    text.resize(std::min(text.find('\r'), text.size()));
    return {Trigger::Kind::request, std::move(text)};
}

Trigger onAny() {
    return {Trigger::Kind::any, {}};
}

Trigger Trigger::nth(unsigned n) const {
    Trigger trigger = *this;
    trigger.first_ = n;
    trigger.last_ = n;
    return trigger;
}

Trigger Trigger::from(unsigned n) const {
    Trigger trigger = *this;
    trigger.first_ = n;
    trigger.last_ = std::numeric_limits<unsigned>::max();
    return trigger;
}

bool Trigger::fits(std::string_view request, const std::vector<std::string>& names) const {
    switch (kind_) {
        case Kind::command:
            return std::find(names.begin(), names.end(), text_) != names.end();
        case Kind::request:
            return request == text_;
        case Kind::any:
            break;
    }
    return true;
}

void FaultScript::add(Trigger trigger, Fault fault) {
    const std::lock_guard lock(mutex_);
    rules_.push_back({std::move(trigger), std::move(fault)});
}

void FaultScript::clear() {
    const std::lock_guard lock(mutex_);
    rules_.clear();
}

std::optional<Fault> FaultScript::onArrival(std::string_view request,
                                            const std::vector<std::string>& names) {
    const std::lock_guard lock(mutex_);
    std::optional<Fault> fault;
    for (Rule& rule : rules_) {
        if (!rule.trigger.fits(request, names)) {
            continue;
        }
        ++rule.seen;
        if (rule.seen >= rule.trigger.first_ && rule.seen <= rule.trigger.last_) {
            fault = rule.fault;
        }
    }
    return fault;
}

}  // namespace orvex::sim
