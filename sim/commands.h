/// @file
/// What a device does for each command.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/command_lookup.h"
#include "sim/device_state.h"

namespace orvex::sim {

/// Carries out a request.
/// @return the whole reply with its carriage return; "e" for a request that is not understood or
///         whose value is not valid, which then changes nothing
[[nodiscard]] std::string carryOut(DeviceState& state, const Match& match);

/// What a command does; it returns the reply's text, or nothing for the error reply.
using Action = std::optional<std::string> (*)(DeviceState& state, std::string_view value);

/// A command with an action of its own.
struct Command {
    const char* name;
    bool takesValue;
    Action action;
};

/// The commands of a family of models; the settings of settings.h are not among them.
[[nodiscard]] const std::vector<Command>& lampCommands();
[[nodiscard]] const std::vector<Command>& ledCommands();

/// A comma list of exactly @p count decimal numbers from 0 to @p maximum; nothing when it is not
/// one.
[[nodiscard]] std::optional<std::vector<int>> parseList(std::string_view text, std::size_t count,
                                                        int maximum);

/// One decimal number from 0 to @p maximum; nothing when it is not one.
[[nodiscard]] std::optional<int> parseOne(std::string_view text, int maximum);

/// A comma list of unknown length.
[[nodiscard]] std::optional<std::vector<int>> parseList(std::string_view text, int maximum);

[[nodiscard]] std::string join(const std::vector<std::string>& texts);

/// Actions that both families have.
std::optional<std::string> connect(DeviceState& state, std::string_view value);
std::optional<std::string> lockFrontPanel(DeviceState& state, std::string_view value);
std::optional<std::string> unlockFrontPanel(DeviceState& state, std::string_view value);
std::optional<std::string> clearAlarm(DeviceState& state, std::string_view value);
std::optional<std::string> tellSoftwareVersion(DeviceState& state, std::string_view value);
std::optional<std::string> tellSerialText(DeviceState& state, std::string_view value);

}  // namespace orvex::sim
