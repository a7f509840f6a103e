/// @file
/// Arrivals and departures of lights.
#pragma once

#include <functional>

#include "tools/orvexctl/attached.h"

namespace orvex::tools {

/// Tells of every light that is there, and then of arrivals and departures, until an interrupt.
/// @param tell the light, and whether it has arrived
void watchPorts(const std::function<void(const AttachedLight&, bool arrived)>& tell);

}  // namespace orvex::tools
