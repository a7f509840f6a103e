/// @file
/// Reading a light's state.
#pragma once

#include "tools/common/snapshot.h"
#include "tools/orvexctl/light.h"

namespace orvex::tools {

/// Asks the light for everything.
[[nodiscard]] Snapshot readSnapshot(Light& light);

/// Asks it again for what changes: intensities, temperatures, states, lamp hours.
void refresh(Light& light, Snapshot& snapshot);

}  // namespace orvex::tools
