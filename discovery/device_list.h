/// @file
/// The registry's update from the ports that are there.
#pragma once

#include <vector>

#include "include/qtr_orvex.h"

/// Brings gl_devs up to date: destroys devices whose port is gone, makes one for each new port.
/// Nothing is opened or sent.
///
/// @return one handle per attached device
/// @throws DriverException when a device cannot be made; earlier changes stay
ORVEX_API std::vector<void*> updateDeviceList();
