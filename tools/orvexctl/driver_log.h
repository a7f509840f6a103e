/// @file
/// The library's log.
#pragma once

#include <string>

#include "tools/orvexctl/options.h"

namespace orvex::tools {

/// Sends the library's log where the options say, standard output excepted.
/// @throws Failure when the log file cannot be opened
void startDriverLog(const CommonOptions& options);

/// Ends it. @throws Failure when not all of it could be written to its file
void endDriverLog();

/// The library's last error line, without its "Error: "; empty when there was none since the last
/// forgetLastError().
[[nodiscard]] std::string lastError();
void forgetLastError();

}  // namespace orvex::tools
