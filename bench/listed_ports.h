/// @file
/// A libudev that knows any number of ports and takes next to no time.
///
/// A program that compiles listed_ports.cpp defines the libudev functions that the library calls.
#pragma once

#include <cstddef>

namespace orvex_bench {

/// From now on so many Tamars are attached: "/dev/ttyACM0" and so on.
void listPorts(std::size_t count);

}  // namespace orvex_bench
