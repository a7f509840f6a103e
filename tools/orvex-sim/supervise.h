/// @file
/// Keeping company with a child.
#pragma once

#include "tools/orvex-sim/child.h"
#include "tools/orvex-sim/stage.h"

namespace orvex::tools {

/// Passes signals on until the child has ended; meanwhile devices and time line go on.
/// @return its exit status
[[nodiscard]] int supervise(Stage& stage, Child& child);

}  // namespace orvex::tools
