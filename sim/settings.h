/// @file
/// What a device only keeps and tells again.
#pragma once

#include <string_view>

#include "sim/device_state.h"

namespace orvex::sim {

/// One value, or one per channel, that clients set and ask for.
struct Setting {
    const char* getter;  ///< The command that tells it; its key in DeviceState::settings.
    const char* setter;  ///< The command that sets it; null: none does.
    bool perChannel;
    const char* initial;
    int maximum;  ///< A setter takes decimal numbers from 0 to this.
};

/// The setting that a command tells; null: none.
[[nodiscard]] const Setting* settingToldBy(std::string_view command) noexcept;

/// The setting that a command sets; null: none.
[[nodiscard]] const Setting* settingSetBy(std::string_view command) noexcept;

/// Gives a state all settings of its family of models, at their initial values. Needs the channels.
void addSettings(DeviceState& state);

}  // namespace orvex::sim
