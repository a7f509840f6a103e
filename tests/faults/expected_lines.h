/// @file
/// What each failed call must come to: log lines and status codes, as tables of their own.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/fault.h"

namespace orvex_faults {

using Lines = std::vector<std::string>;

/// The error line of the failed call itself, which tells the call and the error; nothing for calls
/// that fail without a line of their own.
[[nodiscard]] std::optional<std::string> lineOf(const Event& event);

/// All error lines when this is the only call that fails.
/// @param port the port's path
[[nodiscard]] Lines errorLinesOf(const Event& event, const std::string& port);

/// The status of the step in which this call is the only one that fails.
[[nodiscard]] std::uint32_t statusOf(const Event& event);

/// Whether the status is one of the closed set.
[[nodiscard]] bool isKnownStatus(std::uint32_t status);

}  // namespace orvex_faults
