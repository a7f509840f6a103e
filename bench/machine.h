/// @file
/// A simulated machine for scans.
#pragma once

#include <string>

#include "sim/testbed.h"

namespace orvex_bench {

/// A machine with so many devices, and as many serial ports of another kind.
class Machine {
  public:
    explicit Machine(int devices) {
        for (int number = 0; number < devices; ++number) {
            testbed_.plug(orvex::sim::UsbIdentity{});
            orvex::sim::UsbIdentity other;
            other.vendor = "0403";
            other.product = "6001";
            other.productText = "Serial converter";
            other.kernelName = "ttyUSB" + std::to_string(number);
            testbed_.plug(other);
        }
    }

  private:
    orvex::sim::Testbed testbed_;
};

}  // namespace orvex_bench
