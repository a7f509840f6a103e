/// @file
/// What the log's parts share: the choice of the sink, and the time in their lines.
#pragma once

#include <string>

namespace orvex {

/// Passes a finished line to the sink that gl_log_method names; to none for an unknown method.
void sendToSink(const std::string& line, bool isError);

/// The local time, for example "2024-05-01 13:02:07".
[[nodiscard]] std::string localTime();

}  // namespace orvex
