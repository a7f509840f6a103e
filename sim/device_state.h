/// @file
/// What a simulated device is doing.
#pragma once

#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sim/device_setup.h"

namespace orvex::sim {

using Clock = std::chrono::steady_clock;

/// One channel position; lamps have one channel.
struct Channel {
    int wavelength = ORVEX_EMPTY_POSITION;
    std::string name;
    int group = 0;  ///< 0: none. The device does not itself hold a group to one lit channel.
    bool on = false;
    int intensity = 0;  ///< Tenths of a per cent, as are the limits.
    int minimum = 0;
    int maximum = 1000;
    int temperature = 0;
    bool reportedOn = false;        ///< What status queries tell until reportedFrom, then `on`.
    Clock::time_point settlesAt{};  ///< When status queries begin to tell `on`.
};

/// A plain value; SimulatedDevice and Conversation hand out copies and take changes.
struct DeviceState {
    OrvexType model = ORVEX_TYPE_TAMAR;
    std::vector<Channel> channels;
    std::string serialText;
    std::string softwareVersion;
    std::chrono::milliseconds settleDelay{0};

    bool connected = false;  ///< Between "Connect" and "Disconnect".
    bool frontPanelLocked = false;
    bool alarm = false;
    int savedSettings = 0;  ///< How often "SaveSettings" came.

    bool extendedCommands = false;  ///< Lamps: "EnableExtendedCommands" came.
    bool lampOn = false;
    bool shutterOpen = false;
    bool shutterControl = false;
    int lampHours = 0;
    int iris = 50;  ///< Per cent.

    /// Everything that is only set and told again: by the name of the command that tells it
    /// ("GetSpeakerVolume"), one text per channel or one alone.
    std::map<std::string, std::vector<std::string>, std::less<>> settings;
};

/// A device as it is when it is switched on.
/// @throws std::out_of_range when an LED that is to be on does not exist
[[nodiscard]] DeviceState initialState(const DeviceSetup& setup);

/// Whether a model has LEDs that are switched one by one and speaks the LED models' commands.
[[nodiscard]] bool isLedModel(OrvexType model) noexcept;

}  // namespace orvex::sim
