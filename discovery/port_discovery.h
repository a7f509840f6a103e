/// @file
/// The serial ports of attached devices.
#pragma once

#include <string>
#include <unordered_map>

#include "include/qtr_orvex.h"

/// Asks udev for the serial ports of attached devices and their models.
///
/// @return device node path (for example "/dev/ttyACM0") to model, empty when there is none or
///         udev cannot be reached
[[nodiscard]] ORVEX_API std::unordered_map<std::string, OrvexType> getComMapping();
