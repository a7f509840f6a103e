// A device's record and its switching.
#include <cstddef>
#include <cstring>
#include <set>

#include "tests/soak/device_model.h"
#include "tests/soak/refusal.h"
#include "tests/soak/reply_text.h"

namespace orvex_soak {

namespace {

bool isOn(const OrvexChannel& channel) {
    return (channel.iState & 1) != 0;
}

/// The positions, from 1, that are on, or those that are off.
std::string listOf(const OrvexStruct& state, bool on) {
    std::string list;
    for (int k = 0; k < state.iNumChannels; ++k) {
        if (isOn(state.aChannels[k]) == on) {
            append(list, k + 1);
        }
    }
    return list;
}

bool agrees(const std::string& unitStatus, const OrvexStruct& state) {
    const auto reported = numbersIn(unitStatus);
    for (std::size_t k = 0; k < reported.size() && static_cast<int>(k) < state.iNumChannels; ++k) {
        if (reported[k] != (isOn(state.aChannels[k]) ? 1 : 0)) {
            return false;
        }
    }
    return true;
}

int limited(int wanted, const OrvexChannel& channel) {
    int value = wanted;
    if (channel.iIntensityStep != 0) {
        value -= value % channel.iIntensityStep;
    }
    value = value > channel.iMaxIntensity ? channel.iMaxIntensity : value;
    return value < channel.iMinIntensity ? channel.iMinIntensity : value;
}

template <std::size_t N>
void cutText(char (&text)[N]) {
    const std::size_t length = ::strnlen(text, N);
    std::memset(text + length, 0, N - length);
}

}  // namespace

std::uint32_t DeviceModel::setRecord(const OrvexStruct& in, Transcript& port) {
    return statusOf([&] {
        refuseUnless(in.iSize >= 2008, ORVEX_ERR_STRUCT_SIZE);
        refuseUnless(in.iNumChannels <= static_cast<int>(fitted_.size()), ORVEX_ERR_INVALID_ARG);
        if (in.iDeviceInfo != 0) {
            state_.iDeviceInfo = in.iDeviceInfo;
        }
        const bool intensitiesChanged = takeIntensities(in);
        const bool statesChanged = takeStates(in);
        if (intensitiesChanged) {
            sendIntensities(port);
        }
        if (statesChanged) {
            sendStates(port);
        }
    });
}

bool DeviceModel::takeIntensities(const OrvexStruct& in) {
    bool changed = false;
    for (int slot = 0; slot < in.iNumChannels; ++slot) {
        OrvexChannel& channel = state_.aChannels[fitted_[static_cast<std::size_t>(slot)]];
        const int wanted = in.aChannels[slot].iIntensity;
        if (wanted != channel.iIntensity) {
            channel.iIntensity = limited(wanted, channel);
            changed = true;
        }
    }
    return changed;
}

bool DeviceModel::takeStates(const OrvexStruct& in) {
    bool changed = false;
    std::set<int> groupsWithSelection;
    for (int slot = 0; slot < in.iNumChannels; ++slot) {
        OrvexChannel& channel = state_.aChannels[fitted_[static_cast<std::size_t>(slot)]];
        const int wanted = in.aChannels[slot].iState;
        if (wanted == channel.iState) {
            continue;
        }
        changed = true;
        channel.iState = wanted;
        const int group = channel.iGroup;
        if (group <= 0) {
            continue;
        }
        if (isOn(channel) && groupsWithSelection.insert(group).second) {
            groupChanged_ = groupChanged_ || state_.aiGroupSlot[group] != slot;
            state_.aiGroupSlot[group] = slot;
        } else {
            channel.iState = 0;
        }
    }
    return changed;
}

void DeviceModel::sendIntensities(Transcript& port) const {
    std::string list;
    for (int k = 0; k < state_.iNumChannels; ++k) {
        const int intensity = state_.aChannels[k].iIntensity;
        append(list, isLed() ? intensity : intensity / 10);
    }
    const bool basic = (state_.iCapabilities & 0x12) == 0;
    command(basic ? "SetIntensityH4" : "SetIntensity", list, port);
}

void DeviceModel::sendStates(Transcript& port) {
    const std::string off = listOf(state_, false);
    const std::string on = listOf(state_, true);
    if (!off.empty()) {
        isLed() ? command("TurnLedOff", off, port) : query("CloseShutter", port);
    }
    onList_ = on;
    if (!on.empty() && !isSwitchedOff()) {
        internalOn(on, port);
    }
}

std::uint32_t DeviceModel::switchOrvex(bool enable, bool on, Transcript& port) {
    return statusOf([&] {
        enabled_ = enable;
        if (!enable) {
            return;
        }
        if (!on) {
            internalOff(port);
        } else if (!onList_.empty()) {
            internalOn(onList_, port);
        }
        internalOn_ = on;
    });
}

void DeviceModel::internalOn(const std::string& channels, Transcript& port) {
    if (!isLed()) {
        query("OpenShutter", port);
        return;
    }
    command("TurnLedOn", channels, port);
    if (groupChanged_) {
        while (!agrees(query("GetUnitStatus", port), state_)) {
        }
        groupChanged_ = false;
    }
}

void DeviceModel::internalOff(Transcript& port) const {
    isLed() ? command("TurnLedOff", allList_, port) : query("CloseShutter", port);
}

OrvexStruct DeviceModel::record() const {
    OrvexStruct out{};
    std::memcpy(&out, &state_, offsetof(OrvexStruct, aChannels));
    out.iNumChannels = static_cast<int>(fitted_.size());
    for (std::size_t slot = 0; slot < fitted_.size(); ++slot) {
        out.aChannels[slot] = state_.aChannels[fitted_[slot]];
    }
    return out;
}

OrvexStruct comparable(const OrvexStruct& record) {
    OrvexStruct copy = record;
    cutText(copy.szModelName);
    for (OrvexChannel& channel : copy.aChannels) {
        cutText(channel.szLedName);
    }
    return copy;
}

std::string differenceOf(const OrvexStruct& actual, const OrvexStruct& expected) {
    const OrvexStruct left = comparable(actual);
    const OrvexStruct right = comparable(expected);
    const auto* const a = reinterpret_cast<const unsigned char*>(&left);
    const auto* const b = reinterpret_cast<const unsigned char*>(&right);
    for (std::size_t k = 0; k < sizeof left; ++k) {
        if (a[k] != b[k]) {
            const std::size_t word = k / 4 * 4;
            std::int32_t is = 0;
            std::int32_t mustBe = 0;
            std::memcpy(&is, a + word, 4);
            std::memcpy(&mustBe, b + word, 4);
            return "offset " + std::to_string(word) + " is " + std::to_string(is) +
                   ", but must be " + std::to_string(mustBe);
        }
    }
    return "";
}

}  // namespace orvex_soak
