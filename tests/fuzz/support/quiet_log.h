/// @file
/// The log's lines during fuzzing.
#pragma once

namespace orvex_fuzz {

/// Lets every line end in a callback that reads it, or, not @p wanted, silences the log, which is
/// several times as fast.
void quietLog(bool wanted);

}  // namespace orvex_fuzz
