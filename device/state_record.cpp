// The state record: copied out, and applied with only what differs sent.
#include <bitset>
#include <cstring>
#include <iterator>

#include "api/driver_exception.h"
#include "device/intensity.h"
#include "device/light_device.h"
#include "device/reply.h"

namespace {

constexpr std::int32_t kLampIntensityUnit = 10;
constexpr std::size_t kGroupSlots = std::size(OrvexStruct{}.aiGroupSlot);

bool isOn(const OrvexChannel& channel) {
    return (channel.iState & 1) != 0;
}

/// The positions, from 1, of the channels that are on, or of those that are off.
std::string positions(const OrvexStruct& state, bool on) {
    std::vector<std::int32_t> found;
    for (std::int32_t k = 0; k < state.iNumChannels; ++k) {
        if (isOn(state.aChannels[k]) == on) {
            found.push_back(k + 1);
        }
    }
    return orvex::join(found, ",");
}

}  // namespace

void LightDevice::getOVStruct(OrvexStruct& out) const noexcept {
    std::memcpy(&out, &state_, offsetof(OrvexStruct, aChannels));
    out.iNumChannels = static_cast<std::int32_t>(active_channels_.size());
    for (std::size_t k = 0; k < active_channels_.size(); ++k) {
        out.aChannels[k] = state_.aChannels[active_channels_[k]];
    }
}

void LightDevice::setOVStruct(const OrvexStruct& in) {
    if (in.iNumChannels > static_cast<std::int32_t>(active_channels_.size())) {
        orvex::raise("OrvexStruct::iNumChannels is greater than available channels",
                     ORVEX_ERR_INVALID_ARG);
    }
    if (in.iDeviceInfo != 0) {
        state_.iDeviceInfo = in.iDeviceInfo;
    }
    // The whole record is taken before the first request: a failing one leaves it so.
    const bool intensityChanged = takeIntensities(in);
    const bool stateChanged = takeStates(in);
    if (intensityChanged) {
        sendIntensities();
    }
    if (stateChanged) {
        sendStates();
    }
}

bool LightDevice::takeIntensities(const OrvexStruct& in) {
    bool changed = false;
    for (std::int32_t slot = 0; slot < in.iNumChannels; ++slot) {
        OrvexChannel& channel = channelInSlot(slot);
        const std::int32_t requested = in.aChannels[slot].iIntensity;
        if (requested != channel.iIntensity) {
            channel.iIntensity = orvex::limitedIntensity(requested, channel);
            changed = true;
        }
    }
    return changed;
}

bool LightDevice::takeStates(const OrvexStruct& in) {
    bool changed = false;
    std::bitset<kGroupSlots> selected;
    for (std::int32_t slot = 0; slot < in.iNumChannels; ++slot) {
        OrvexChannel& channel = channelInSlot(slot);
        if (in.aChannels[slot].iState == channel.iState) {
            continue;
        }
        channel.iState = in.aChannels[slot].iState;
        changed = true;
        const auto group = static_cast<std::size_t>(channel.iGroup);
        if (group == 0) {
            continue;
        }
        // At most one channel of a group is on: the first that this record switches on.
        if (isOn(channel) && !selected.test(group)) {
            selected.set(group);
            group_selection_changed_ |= state_.aiGroupSlot[group] != slot;
            state_.aiGroupSlot[group] = slot;
        } else {
            channel.iState = 0;
        }
    }
    return changed;
}

void LightDevice::sendIntensities() {
    std::vector<std::int32_t> intensities;
    for (std::int32_t k = 0; k < state_.iNumChannels; ++k) {
        const std::int32_t intensity = state_.aChannels[k].iIntensity;
        intensities.push_back(isLed() ? intensity : intensity / kLampIntensityUnit);
    }
    const bool extended = (state_.iCapabilities & (ORVEX_CAP_LED | ORVEX_CAP_EXTENDED)) != 0;
    std::string reply;
    executeCommand(extended ? "SetIntensity" : "SetIntensityH4", reply,
                   orvex::join(intensities, ","));
}

void LightDevice::sendStates() {
    const std::string off = positions(state_, false);
    const std::string on = positions(state_, true);
    std::string reply;
    if (!off.empty()) {
        if (isLed()) {
            executeCommand("TurnLedOff", reply, off);
        } else {
            executeCommand("CloseShutter", reply, "");
        }
    }
    switched_on_list_ = on;
    const bool switchedOff = switch_enabled_ && !internal_on_;
    if (!on.empty() && !switchedOff) {
        switchInternalOn(on);
    }
}

OrvexChannel& LightDevice::channelInSlot(std::int32_t slot) {
    return state_.aChannels[active_channels_[static_cast<std::size_t>(slot)]];
}
