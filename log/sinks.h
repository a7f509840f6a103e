/// @file
/// What the log's parts share: the choice of the sink, and the time in their lines.
#pragma once

#include <atomic>
#include <cstdint>
#include <ostream>
#include <string>

namespace orvex {

/// What gl_log_bits refers to; closer at hand for the library itself.
extern std::atomic<std::uint32_t> logMask;

/// Whether messages of a class are written.
[[nodiscard]] inline bool isLogged(unsigned level) noexcept {
    return (logMask & level) != 0;
}

/// Passes a finished line to the sink that gl_log_method names; to none for an unknown method.
void sendToSink(const std::string& line, bool isError);

/// What buildLogMessage writes, as text.
[[nodiscard]] std::string logPrefix(unsigned level);

/// Writes a line to standard output or error. The stream's own state, which is the application's,
/// has no part in it: a line that cannot be written neither silences the stream for good nor throws
/// what the stream may be set to throw.
void writeLine(const std::ostream& standard, const std::string& line);

/// Appends a line to a file, which is created when it is missing and closed again; what cannot be
/// written is lost.
void appendLine(const std::string& path, const std::string& line);

/// The local time, for example "2024-05-01 13:02:07".
[[nodiscard]] std::string localTime();

}  // namespace orvex
