/// @file
/// A light's state for people.
#pragma once

#include <iosfwd>

#include "tools/common/snapshot.h"

namespace orvex::tools {

void printSnapshot(std::ostream& out, const Snapshot& snapshot);

}  // namespace orvex::tools
