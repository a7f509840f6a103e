/// @file
/// From the command line to a sub-command.
#pragma once

#include "tools/orvexctl/failure.h"

namespace orvex::tools {

/// Does what the command line says; failures are reported on standard error.
[[nodiscard]] ExitCode runCommandLine(int argc, char** argv);

/// Reports a failure on standard error. @return its exit code
ExitCode report(const Failure& failure);

}  // namespace orvex::tools
