/// @file
/// What a simulated device is made of before anyone talks to it.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"

namespace orvex::sim {

/// A device to simulate.
///
/// The lists hold one entry per channel position. Where a list is shorter, the model's own values
/// fill the rest; a list of wavelengths given at all decides how many positions there are. Lamps
/// have one channel, their lamp.
struct DeviceSetup {
    OrvexType model = ORVEX_TYPE_TAMAR;
    /// LED models: nm, or ORVEX_EMPTY_POSITION. None given: 4 LEDs in a Spruce; 8 positions with 6
    /// LEDs in a Tamar; 16 with 12 in a Willow.
    std::vector<int> wavelengths;
    /// LED models; "365nm" and the like by default, "empty" without an LED.
    std::vector<std::string> names;
    /// In tenths of a per cent, lamps too; 500 by default.
    std::vector<int> intensities;
    /// Degrees; 30 by default.
    std::vector<int> temperatures;
    /// LED models: the LEDs (from 1) that are on.
    std::vector<int> ledsOn;
    /// The least intensity but 0, in tenths of a per cent.
    int minimum = 50;
    std::string serialText = "SN-0042";
    std::string softwareVersion = "1.4.2";
    int lampHours = 120;
    /// How long "GetUnitStatus" still reports the old state of a channel in a group after it was
    /// switched.
    std::chrono::milliseconds settleDelay{0};
};

}  // namespace orvex::sim
