// The calls of a session that write records and switch.
#include <algorithm>

#include "tests/fuzz/support/expected_opening.h"
#include "tests/fuzz/support/expected_reply.h"
#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"
#include "tests/fuzz/support/session.h"

namespace orvex_fuzz {

namespace {

constexpr std::uint16_t kTooSmall = 2007;

bool isOn(const OrvexChannel& channel) {
    return channel.iState % 2 != 0;
}

/// What stands behind a command's prefix in a request.
std::string valueIn(const std::string& request, const std::string& prefix) {
    holds(request.substr(0, prefix.size()) == prefix, "a write sends the expected command");
    holds(request.size() > prefix.size() && request.back() == '\r', "a request is terminated");
    return request.substr(prefix.size(), request.size() - prefix.size() - 1);
}

}  // namespace

OrvexStruct Session::recordFrom(std::string_view text, const OrvexStruct& before) const {
    OrvexStruct record = before;
    const std::vector<std::string> parts = piecesOf(text, ";");
    const std::vector<std::int32_t> head = decimalsIn(parts[0]);
    record.iNumChannels = head[0];
    record.iDeviceInfo = head.size() > 1 ? static_cast<std::uint64_t>(head[1]) : 0;
    for (std::size_t k = 0; k + 1 < parts.size() && k < ORVEX_MAX_CHANNEL; ++k) {
        const std::vector<std::int32_t> values = decimalsIn(parts[k + 1]);
        record.aChannels[k].iIntensity = values[0];
        if (values.size() > 1) {
            record.aChannels[k].iState = values[1];
        }
    }
    return record;
}

void Session::write(std::string_view text) {
    const OrvexStruct before = soundRecordOf(handle_);
    holds(before.iNumChannels == static_cast<std::int32_t>(positions_.size()),
          "a record has the fitted LEDs");
    const OrvexStruct record = recordFrom(text, before);
    const std::uint32_t status = ORVEX_SetOVStruct(handle_, &record);
    requireKnownStatus(status);
    const OrvexStruct after = soundRecordOf(handle_);
    if (record.iNumChannels > before.iNumChannels) {
        holds(status == ORVEX_ERR_INVALID_ARG && exchangesOfCall().empty(),
              "a record of too many channels is refused");
        requireSameRecord(after, before);
        return;
    }
    const WrittenRecord expected = expectedWrite(before, record);
    requireSameRecord(after, expected.record);
    requireWriteRequests(expected);
    requireOutcome(status);
    if (status == ORVEX_OK) {
        requireAllSent(expected);
        requireSettled(after);
    }
}

void Session::writeShort(std::string_view text) const {
    const OrvexStruct before = soundRecordOf(handle_);
    OrvexStruct record = recordFrom(text, before);
    record.iSize = kTooSmall;
    holds(ORVEX_SetOVStruct(handle_, &record) == ORVEX_ERR_STRUCT_SIZE, "a record tells its size");
    holds(ORVEX_GetOVStruct(handle_, &record) == ORVEX_ERR_STRUCT_SIZE, "a record tells its size");
    holds(record.iSize == kTooSmall && exchangesOfCall().empty(), "nothing is written or sent");
    requireSameRecord(soundRecordOf(handle_), before);
}

/// How many of the record's channels are at positions of the device. A device that has been closed,
/// or whose opening failed for too many channels, has a list of LEDs that goes beyond them.
std::size_t Session::knownChannels() const {
    const auto beyond = std::upper_bound(positions_.begin(), positions_.end(), last_);
    return static_cast<std::size_t>(beyond - positions_.begin());
}

/// The requests of a write: intensities, then what is off, then what is on, then the polls.
void Session::requireWriteRequests(const WrittenRecord& written) const {
    const Exchanges sent = exchangesOfCall();
    holds(written.hasNewIntensity || written.hasNewState || sent.empty(),
          "what has not changed is not sent");
    const std::string* const set = requestPrefix(model_, "SetIntensity");
    const std::string* const off = requestPrefix(model_, "TurnLedOff");
    const std::string* const on = requestPrefix(model_, "TurnLedOn");
    std::size_t next = 0;
    const auto isNext = [&](const std::string* prefix) {
        return next < sent.size() && prefix != nullptr &&
               sent[next].request.compare(0, prefix->size(), *prefix) == 0;
    };
    if (written.hasNewIntensity && isNext(set)) {
        requireIntensities(sent[next++].request, written.record);
    }
    if (written.hasNewState && isNext(off)) {
        requirePositions(sent[next++].request, written.record, false);
    }
    if (written.hasNewState && isNext(on)) {
        requirePositions(sent[next++].request, written.record, true);
    }
    for (; next < sent.size(); ++next) {
        const bool isUnsent = sent[next].fault == Exchange::Fault::Purge;
        holds(sent[next].request == (isUnsent ? "" : "us?\r"), "only the unit's status is polled");
    }
}

bool Session::hasSent(const char* command) const {
    const std::string* const prefix = requestPrefix(model_, command);
    const Exchanges sent = exchangesOfCall();
    return std::any_of(sent.begin(), sent.end(), [prefix](const Exchange& exchange) {
        return prefix != nullptr && exchange.request.compare(0, prefix->size(), *prefix) == 0;
    });
}

/// Nothing is left out of a write that succeeds.
void Session::requireAllSent(const WrittenRecord& written) const {
    holds(!written.hasNewIntensity || hasSent("SetIntensity"), "new intensities are sent");
    if (!written.hasNewState || knownChannels() != positions_.size()) {
        return;
    }
    const auto* const channels = written.record.aChannels;
    const bool anyOn = std::any_of(channels, channels + positions_.size(), isOn);
    const bool anyOff = !std::all_of(channels, channels + positions_.size(), isOn);
    holds(!anyOff || hasSent("TurnLedOff"), "what is off is sent");
    const bool isOff = isSwitching_ && !isSwitchedOn_;
    holds(!isOff || !hasSent("TurnLedOn"), "a light that is switched off stays off");
    holds(!anyOn || isOff || hasSent("TurnLedOn"), "what is on is sent");
    holds(!written.hasNewSelection || isOff || hasSent("GetUnitStatus"),
          "a group's new selection is awaited");
}

void Session::requireIntensities(const std::string& request, const OrvexStruct& record) const {
    const std::string value = valueIn(request, *requestPrefix(model_, "SetIntensity"));
    const std::vector<std::string> sent = piecesOf(value, ",");
    holds(value.empty() ? last_ == 0 : sent.size() == static_cast<std::size_t>(last_),
          "all positions' intensities are sent");
    for (std::size_t k = 0; k < knownChannels(); ++k) {
        holds(sent[static_cast<std::size_t>(positions_[k]) - 1] ==
                  std::to_string(record.aChannels[k].iIntensity),
              "the record's intensities are sent");
    }
}

void Session::requirePositions(const std::string& request, const OrvexStruct& record,
                               bool on) const {
    const std::string value =
        valueIn(request, *requestPrefix(model_, on ? "TurnLedOn" : "TurnLedOff"));
    const std::vector<std::int32_t> sent = decimalsIn(value);
    holds(sent.front() >= 1 && sent.back() <= last_, "sent positions exist");
    holds(std::is_sorted(sent.begin(), sent.end()), "sent positions are in order");
    for (std::size_t k = 0; k < knownChannels(); ++k) {
        const bool isSent = std::count(sent.begin(), sent.end(), positions_[k]) == 1;
        holds(isSent == (isOn(record.aChannels[k]) == on), "each LED is sent as what it is");
    }
}

/// Only a call's last exchange may have failed, and the status tells how.
void Session::requireOutcome(std::uint32_t status) const {
    const Exchanges sent = exchangesOfCall();
    if (sent.empty()) {
        const bool isRefused = status == ORVEX_ERR_NOT_SUPPORTED ||
                               (status == ORVEX_ERR_NOT_CONNECTED && !port_.isOpen());
        holds(status == ORVEX_OK || isRefused, "a call that sends nothing fails only for a reason");
        return;
    }
    for (std::size_t k = 0; k < sent.size(); ++k) {
        const std::uint32_t outcome = outcomeOf(sent[k]);
        const bool isLast = k + 1 == sent.size();
        holds(outcome == (isLast ? status : ORVEX_OK), "the first failing exchange ends a call");
        holds(sent[k].fault == Exchange::Fault::Purge || sent[k].request.back() == '\r',
              "a request is terminated");
    }
}

/// After a wait for a group the last poll's numbers are the record's states.
void Session::requireSettled(const OrvexStruct& record) const {
    const Exchanges sent = exchangesOfCall();
    if (sent.empty() || sent.back().request != "us?\r") {
        return;
    }
    const std::vector<std::int32_t> states = decimalsIn(sent.back().reply);
    for (std::size_t k = 0; k < knownChannels(); ++k) {
        const auto position = static_cast<std::size_t>(positions_[k]) - 1;
        if (position < states.size()) {
            holds(states[position] == (isOn(record.aChannels[k]) ? 1 : 0),
                  "a wait ends when the device shows the record's states");
        }
    }
}

void Session::switchLight(std::string_view text) {
    const bool enable = text.substr(0, 1) == "1";
    const bool on = text.size() > 1 && text[1] == '1';
    const OrvexStruct before = soundRecordOf(handle_);
    const std::uint32_t status = ORVEX_SwitchOrvex(handle_, enable, on);
    requireKnownStatus(status);
    requireOutcome(status);
    requireSameRecord(soundRecordOf(handle_), before);
    isSwitching_ = enable;
    isSwitchedOn_ = enable && status == ORVEX_OK ? on : isSwitchedOn_;
    const Exchanges sent = exchangesOfCall();
    if (!enable) {
        holds(status == ORVEX_OK && sent.empty(), "what is not enabled sends nothing");
    } else if (!on && port_.isOpen() && model_ != 6) {
        holds(sent.size() == 1, "switching off is one request");
    }
}

}  // namespace orvex_fuzz
