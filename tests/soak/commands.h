/// @file
/// What each model's requests look like on the wire, for those commands that the soak uses.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"

namespace orvex_soak {

/// The request's text; nothing when the model has no such command.
[[nodiscard]] std::optional<std::string> requestOf(OrvexType model, const std::string& command);

/// All commands that any model has here, and some that none has.
[[nodiscard]] const std::vector<std::string>& commandNames();

}  // namespace orvex_soak
