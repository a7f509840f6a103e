#include "sim/conversation.h"

#include <algorithm>
#include <utility>

#include "sim/commands.h"

namespace orvex::sim {

namespace {

constexpr char kTerminator = '\r';
constexpr std::string_view kPresence = "A";
// No request is nearly so long; what goes beyond is dropped.
constexpr std::size_t kLongestRequest = 4096;

std::string_view withoutTerminator(std::string_view request) {
    return request.substr(0, request.find(kTerminator));
}

void sendByteByByte(std::string_view reply, const Fault& fault, std::vector<Transmission>& out) {
    auto delay = fault.delay;
    for (const char byte : reply) {
        out.push_back({std::string(1, byte), delay, fault.endsAtNextRequest, false});
        delay = *fault.bytePause;
    }
}

void send(std::string reply, const Fault& fault, std::vector<Transmission>& out) {
    reply.resize(reply.size() - std::min(fault.bytesOff, reply.size()));
    if (fault.hangUp) {
        out.push_back({{}, fault.delay, false, true});
    } else if (fault.silent || reply.empty()) {
        return;
    } else if (fault.bytePause) {
        sendByteByByte(reply, fault, out);
    } else {
        out.push_back({std::move(reply), fault.delay, fault.endsAtNextRequest, false});
    }
}

}  // namespace

Conversation::Conversation(const DeviceSetup& setup)
    : lookup_(setup.model), state_(initialState(setup)) {}

std::vector<Transmission> Conversation::receive(std::string_view bytes) {
    record_.addBytes(bytes);
    std::vector<Transmission> out;
    for (const char byte : bytes) {
        if (byte == kTerminator || partial_.size() < kLongestRequest) {
            partial_ += byte;
        }
        if (byte == kTerminator || partial_ == kPresence) {
            answer(std::exchange(partial_, {}), out);
        }
    }
    return out;
}

std::string Conversation::exchange(std::string_view bytes) {
    std::string replies;
    for (const Transmission& transmission : receive(bytes)) {
        replies += transmission.bytes;
    }
    return replies;
}

void Conversation::forgetPartialRequest() noexcept {
    partial_.clear();
}

DeviceState Conversation::state() const {
    const std::lock_guard lock(mutex_);
    return state_;
}

void Conversation::change(const std::function<void(DeviceState&)>& edit) {
    const std::lock_guard lock(mutex_);
    edit(state_);
}

void Conversation::answer(const std::string& request, std::vector<Transmission>& out) {
    const std::string_view text = withoutTerminator(request);
    const bool isPresence = request == kPresence;
    const Match match = isPresence ? Match{} : lookup_.find(text);
    const Fault fault = faults_.onArrival(text, match.names).value_or(Fault{});
    const bool isPerformed = !fault.reply && !fault.hangUp;
    std::string reply = fault.reply.value_or("");
    if (isPerformed) {
        reply = isPresence ? std::string(kPresence) : perform(match);
    }
    record_.addRequest(request);
    send(std::move(reply), fault, out);
}

std::string Conversation::perform(const Match& match) {
    const std::lock_guard lock(mutex_);
    return carryOut(state_, match);
}

}  // namespace orvex::sim
