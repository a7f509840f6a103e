/// @file
/// The log line of a failed system call.
#pragma once

namespace orvex {

/// Logs "<context> Error <number> from <call>: <text>" as an error.
void logSystemError(const char* context, const char* call, int error);

}  // namespace orvex
