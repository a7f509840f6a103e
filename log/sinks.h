/// @file
/// What the log's parts share: the choice of the sink, and the time in their lines.
#pragma once

#include <ostream>
#include <string>

namespace orvex {

/// Passes a finished line to the sink that gl_log_method names; to none for an unknown method.
void sendToSink(const std::string& line, bool isError);

/// Writes a line to standard output or error. The stream's own state, which is the application's,
/// has no part in it: a line that cannot be written neither silences the stream for good nor throws
/// what the stream may be set to throw.
void writeLine(const std::ostream& standard, const std::string& line);

/// The local time, for example "2024-05-01 13:02:07".
[[nodiscard]] std::string localTime();

}  // namespace orvex
