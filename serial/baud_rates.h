/// @file
/// The rates a serial port can have.
#pragma once

#include <map>

namespace orvex {

/// Bits per second to termios speed constant, in ascending order.
extern const std::map<unsigned, unsigned> kBaudRates;

}  // namespace orvex
