/// @file
/// Fields of a LightDevice that no call shows, or sets, in full.
#pragma once

#include <cstdint>
#include <vector>

#include "device/light_device.h"

namespace orvex_test {

/// The cached state of all positions, fitted or not; of a lamp, too.
OrvexStruct& cacheOf(LightDevice& device);
/// The positions of the record's slots; empty for a lamp.
std::vector<std::int32_t>& slotsOf(LightDevice& device);
/// The device's own copy of its model's commands.
CommandTable& commandsOf(LightDevice& device);
/// Whether there is a link, connected or not.
bool hasLink(const LightDevice& device);

// Access checks do not apply to the arguments of an explicit instantiation.
template <auto State, auto Slots, auto Commands, auto Link>
struct Fields {
    friend OrvexStruct& cacheOf(LightDevice& device) { return device.*State; }
    friend std::vector<std::int32_t>& slotsOf(LightDevice& device) { return device.*Slots; }
    friend CommandTable& commandsOf(LightDevice& device) { return device.*Commands; }
    friend bool hasLink(const LightDevice& device) { return device.*Link != nullptr; }
};
template struct Fields<&LightDevice::state_, &LightDevice::active_channels_,
                       &LightDevice::commands_, &LightDevice::link_>;

}  // namespace orvex_test
