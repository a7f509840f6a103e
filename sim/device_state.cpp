#include "sim/device_state.h"

#include "device/model_table.h"
#include "sim/settings.h"

namespace orvex::sim {

namespace {

constexpr int kLampWavelength = 500;
constexpr int kEmpty = ORVEX_EMPTY_POSITION;
constexpr int kDefaultIntensity = 500;
constexpr int kDefaultTemperature = 30;
constexpr int kGroupingMinimum = 5;
constexpr int kFirstGrouped = 3;
constexpr int kLastGrouped = 6;

std::vector<int> defaultWavelengths(OrvexType model) {
    switch (model) {
        case ORVEX_TYPE_SPRUCE:
            return {365, 470, 525, 625};
        case ORVEX_TYPE_TAMAR:
            return {365, 405, kEmpty, 470, 525, 590, 625, kEmpty};
        case ORVEX_TYPE_WILLOW:
            return {365, 385, 405, 430,    450, 470,    490, kEmpty,
                    525, 550, 575, kEmpty, 625, kEmpty, 730, kEmpty};
        default:
            return {kLampWavelength};
    }
}

std::string defaultName(int wavelength) {
    return wavelength == kEmpty ? "empty" : std::to_string(wavelength) + "nm";
}

template <typename T>
T entryOr(const std::vector<T>& list, std::size_t index, T otherwise) {
    return index < list.size() ? list[index] : otherwise;
}

Channel makeChannel(const DeviceSetup& setup, std::size_t index, int wavelength) {
    Channel channel;
    channel.wavelength = wavelength;
    channel.name = entryOr(setup.names, index, defaultName(wavelength));
    channel.intensity = entryOr(setup.intensities, index, kDefaultIntensity);
    channel.minimum = setup.minimum;
    channel.temperature = entryOr(setup.temperatures, index, kDefaultTemperature);
    return channel;
}

/// The fourth to seventh LED share a group, if there are five or more.
void formGroup(std::vector<Channel>& channels) {
    std::vector<Channel*> fitted;
    for (Channel& channel : channels) {
        if (channel.wavelength != kEmpty) {
            fitted.push_back(&channel);
        }
    }
    if (fitted.size() < kGroupingMinimum) {
        return;
    }
    for (std::size_t k = kFirstGrouped; k <= kLastGrouped && k < fitted.size(); ++k) {
        fitted[k]->group = 1;
    }
}

std::vector<Channel> makeChannels(const DeviceSetup& setup) {
    const bool given = isLedModel(setup.model) && !setup.wavelengths.empty();
    std::vector<Channel> channels;
    for (const int wavelength : given ? setup.wavelengths : defaultWavelengths(setup.model)) {
        channels.push_back(makeChannel(setup, channels.size(), wavelength));
    }
    for (const int led : setup.ledsOn) {
        channels.at(static_cast<std::size_t>(led) - 1).on = true;
    }
    if (isLedModel(setup.model)) {
        formGroup(channels);
    }
    return channels;
}

}  // namespace

bool isLedModel(OrvexType model) noexcept {
    const Model* const known = findModel(model);
    return known != nullptr && known->commands != &gl_cmd_lamp;
}

DeviceState initialState(const DeviceSetup& setup) {
    DeviceState state;
    state.model = setup.model;
    state.channels = makeChannels(setup);
    state.serialText = setup.serialText;
    state.softwareVersion = setup.softwareVersion;
    state.settleDelay = setup.settleDelay;
    state.lampHours = setup.lampHours;
    addSettings(state);
    return state;
}

}  // namespace orvex::sim
