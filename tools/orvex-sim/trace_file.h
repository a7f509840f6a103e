/// @file
/// Traces as they were recorded.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "include/qtr_orvex.h"
#include "sim/conversation.h"

namespace orvex::tools {

/// What one side said.
struct TraceEntry {
    std::size_t line = 0;  ///< Of the file, from 1.
    std::chrono::microseconds time{0};
    sim::Direction direction = sim::Direction::toDevice;
    std::string bytes;
};

/// One device's conversation.
struct TraceDevice {
    unsigned number = 0;
    OrvexType model = ORVEX_TYPE_UNDEFINED;
    std::string path;  ///< Where its clients found it.
    std::vector<TraceEntry> entries;
};

/// Reads a trace.
/// @throws Failure that names the file and the line
[[nodiscard]] std::vector<TraceDevice> readTrace(const std::string& path);

}  // namespace orvex::tools
