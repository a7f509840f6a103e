/// @file
/// The option --timeout.
#pragma once

namespace orvex::tools {

/// Ends the program with ExitCode::noAnswer after so many seconds, whatever it does then.
void endAfter(double seconds);

}  // namespace orvex::tools
