// What is read from a device when it is opened.
#include <algorithm>
#include <cstring>
#include <numeric>

#include "api/driver_exception.h"
#include "device/light_device.h"
#include "device/reply.h"
#include "log/log.h"

using orvex::parseNumber;
using orvex::parseNumbers;

namespace {

constexpr std::int32_t kLampWavelength = 500;
constexpr std::int32_t kExtendedChannelCount = 8;
constexpr std::int32_t kGroupingMinimum = 5;
constexpr std::int32_t kFirstGrouped = 3;
constexpr std::int32_t kLastGrouped = 6;
constexpr std::int32_t kMaxIntensity = 1000;
constexpr std::int32_t kLampMaxIntensity = 40;
constexpr std::int32_t kIntensityStep = 10;

/// Copies as much of a text as fits, always terminated.
template <std::size_t N>
void copyText(char (&target)[N], std::string_view text) {
    const std::size_t length = std::min(text.size(), N - 1);
    std::memcpy(target, text.data(), length);
    target[length] = '\0';
}

std::size_t channelCount(const OrvexStruct& state) {
    return static_cast<std::size_t>(state.iNumChannels);
}

/// One field of all channels, for a log line: "[1, 2, 3]".
std::string listed(const OrvexStruct& state, std::int32_t OrvexChannel::*field) {
    std::vector<std::int32_t> values;
    for (std::size_t k = 0; k < channelCount(state); ++k) {
        values.push_back(state.aChannels[k].*field);
    }
    return "[" + orvex::join(values, ", ") + "]";
}

/// Stores a reply's numbers, one per channel; numbers beyond the last channel are ignored.
void storeNumbers(OrvexStruct& state, const std::string& reply, std::int32_t OrvexChannel::*field) {
    const std::vector<std::int32_t> numbers = parseNumbers(reply);
    for (std::size_t k = 0; k < std::min(numbers.size(), channelCount(state)); ++k) {
        state.aChannels[k].*field = numbers[k];
    }
}

std::string channelNumbers(std::int32_t count) {
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 1);
    return orvex::join(numbers, ",");
}

}  // namespace

void LightDevice::initDevice() {
    state_.iCapabilities = orvex::capabilitiesOf(type_);
    const std::string& name = gl_type_names.at(type_);
    copyText(state_.szModelName, name);
    state_.hDevice = reinterpret_cast<std::uintptr_t>(hDev());
    active_channels_.clear();
    if (isLed()) {
        readChannels();
    } else {
        state_.iNumChannels = 1;
        state_.aChannels[0].iWavelength = kLampWavelength;
    }
    log(LOG_BIT_INFO, "LightDevice:initDevice: Orvex " + name + " has " +
                          std::to_string(state_.iNumChannels) +
                          " channels: " + listed(state_, &OrvexChannel::iWavelength));
    if (isLed()) {
        readLeds();
    } else {
        readLamp();
    }
    all_channels_list_ = channelNumbers(state_.iNumChannels);
    log(LOG_BIT_DETAIL, "initDevice: succeed.");
}

void LightDevice::readChannels() {
    std::int32_t position = 0;
    std::int32_t fitted = 0;
    for (const std::int32_t wavelength : parseNumbers(query("GetWaveLengthLED"))) {
        if (position == ORVEX_MAX_CHANNEL) {
            orvex::raise("ORVEX_MAX_CHANNEL is exceeded!", ORVEX_ERR_MAX_CHANNEL);
        }
        if (wavelength < 1) {
            break;
        }
        OrvexChannel& channel = state_.aChannels[position];
        channel.iWavelength = wavelength;
        if (wavelength != ORVEX_EMPTY_POSITION) {
            active_channels_.push_back(position);
            channel.iGroup = fitted >= kFirstGrouped && fitted <= kLastGrouped ? 1 : 0;
            ++fitted;
        }
        ++position;
    }
    state_.iNumChannels = position;
    if (fitted < kGroupingMinimum) {
        for (std::int32_t k = 0; k < position; ++k) {
            state_.aChannels[k].iGroup = 0;
        }
    }
    state_.iExtendedChannels = position >= kExtendedChannelCount ? 1 : 0;
    if (state_.iExtendedChannels != 0) {
        state_.iCapabilities |= ORVEX_CAP_EXTENDED_CHANNELS;
    }
}

void LightDevice::readLamp() {
    OrvexChannel& lamp = state_.aChannels[0];
    state_.iUnitStatus = parseNumber(query("GetUnitStatus"));
    lamp.iMinIntensity = 0;
    lamp.iMaxIntensity = kLampMaxIntensity;
    lamp.iIntensityStep = kIntensityStep;
    if ((state_.iCapabilities & ORVEX_CAP_EXTENDED) == 0) {
        lamp.iIntensity = orvex::tenfold(parseNumber(query("GetIntensityH4")));
        return;
    }
    lamp.iMinIntensity = orvex::tenfold(parseNumber(query("MinimumIntensityPercentage")));
    lamp.iMaxIntensity = kMaxIntensity;
    lamp.iIntensity = orvex::tenfold(parseNumber(query("GetIntensity")));
    lamp.iTemperature = parseNumber(query("GetTemperature"));
}

void LightDevice::readLeds() {
    readLedStates();
    readLedLimits();
    storeNumbers(state_, query("GetIntensity"), &OrvexChannel::iIntensity);
    storeNumbers(state_, query("GetTemperature"), &OrvexChannel::iTemperature);
    readLedNames();
    readSerialNumber();
}

void LightDevice::readLedStates() {
    const std::string reply = query("GetUnitStatus");
    storeNumbers(state_, reply, &OrvexChannel::iState);
    const std::vector<std::int32_t> states = parseNumbers(reply);
    const std::size_t stored = std::min(states.size(), channelCount(state_));
    if (stored > 0) {
        state_.iUnitStatus = states[stored - 1];
    }
    log(LOG_BIT_INFO,
        "LightDevice:initDevice: LED states: " + listed(state_, &OrvexChannel::iState));
}

void LightDevice::readLedLimits() {
    const std::vector<std::int32_t> minima = parseNumbers(query("MinimumIntensityPercentage"));
    for (std::size_t k = 0; k < std::min(minima.size(), channelCount(state_)); ++k) {
        OrvexChannel& channel = state_.aChannels[k];
        channel.iMaxIntensity = kMaxIntensity;
        channel.iIntensityStep = kIntensityStep;
        channel.iMinIntensity = minima[k];
    }
}

void LightDevice::readLedNames() {
    const std::string reply = query("GetNameLED");
    const std::vector<std::string_view> names = orvex::split(reply, ",\r");
    for (std::size_t k = 0; k < std::min(names.size(), channelCount(state_)); ++k) {
        copyText(state_.aChannels[k].szLedName, names[k]);
    }
}

void LightDevice::readSerialNumber() {
    const std::string reply = query("GetUnitSerialNumber");
    log(LOG_BIT_INFO, "Full SerialNumber is: " + reply);
    const std::size_t dash = reply.rfind('-');
    const std::size_t start = dash == std::string::npos ? 0 : dash + 1;
    state_.iSerialNumber = parseNumber(std::string_view(reply).substr(start));
}
