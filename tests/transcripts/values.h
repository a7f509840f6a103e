/// @file
/// Values for the commands that take one.
#pragma once

#include <string>

#include "include/qtr_orvex.h"

namespace orvex_test {

/// A value that the model takes behind a command; empty for a command that is only sent alone.
[[nodiscard]] std::string valueFor(OrvexType model, const std::string& command);

}  // namespace orvex_test
