#include "tests/wire_faults/expected_record.h"

#include <type_traits>

namespace orvex_test {

namespace {

class Comparison {
  public:
    template <typename A, typename B>
    void same(const char* field, const A& found, const B& expected) {
        if (found != expected) {
            differences_.push_back(std::string(field) + " is " + text(found) + ", not " +
                                   text(expected));
        }
    }
    [[nodiscard]] std::vector<std::string> differences() const { return differences_; }

  private:
    template <typename T>
    static std::string text(const T& value) {
        if constexpr (std::is_arithmetic_v<T>) {
            return std::to_string(value);
        } else {
            return std::string(value);
        }
    }

    std::vector<std::string> differences_;
};

void compareLeds(Comparison& comparison, const OrvexStruct& record,
                 const orvex::sim::DeviceState& state) {
    constexpr std::size_t kLongestName = 9;
    std::size_t slot = 0;
    for (const orvex::sim::Channel& channel : state.channels) {
        if (channel.wavelength == ORVEX_EMPTY_POSITION) {
            continue;
        }
        const OrvexChannel& told = record.aChannels[slot++];
        comparison.same("iWavelength", told.iWavelength, channel.wavelength);
        comparison.same("szLedName", std::string(told.szLedName),
                        channel.name.substr(0, kLongestName));
        comparison.same("iGroup", told.iGroup, channel.group);
        comparison.same("iIntensity", told.iIntensity, channel.intensity);
        comparison.same("iMinIntensity", told.iMinIntensity, channel.minimum);
        comparison.same("iMaxIntensity", told.iMaxIntensity, 1000);
        comparison.same("iIntensityStep", told.iIntensityStep, 10);
        comparison.same("iTemperature", told.iTemperature, channel.temperature);
        comparison.same("iState", told.iState, channel.on ? 1 : 0);
    }
    comparison.same("iNumChannels", record.iNumChannels, static_cast<int>(slot));
    comparison.same("iExtendedChannels", record.iExtendedChannels,
                    state.channels.size() >= 8 ? 1 : 0);
    comparison.same("iUnitStatus", record.iUnitStatus, state.channels.back().on ? 1 : 0);
    comparison.same("iSerialNumber", record.iSerialNumber, 42);
    comparison.same("iCapabilities", record.iCapabilities,
                    state.channels.size() >= 8 ? 0x30U : 0x10U);
}

void compareLamp(Comparison& comparison, const OrvexStruct& record,
                 const orvex::sim::DeviceState& state) {
    comparison.same("iNumChannels", record.iNumChannels, 0);
    comparison.same("iUnitStatus", record.iUnitStatus,
                    (state.lampOn ? 1 : 0) + (state.shutterOpen ? 2 : 0));
    comparison.same("iCapabilities", record.iCapabilities,
                    state.model == ORVEX_TYPE_ALDER ? 1U : 3U);
}

}  // namespace

std::vector<std::string> differences(const OrvexStruct& record,
                                     const orvex::sim::DeviceSetup& setup,
                                     const orvex::sim::DeviceState& state, std::uint64_t handle) {
    Comparison comparison;
    comparison.same("iSize", record.iSize, 2008);
    comparison.same("hDevice", record.hDevice, handle);
    const bool isLed = setup.model >= ORVEX_TYPE_SPRUCE;
    if (isLed) {
        compareLeds(comparison, record, state);
    } else {
        compareLamp(comparison, record, state);
    }
    return comparison.differences();
}

}  // namespace orvex_test
