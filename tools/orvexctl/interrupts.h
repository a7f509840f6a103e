/// @file
/// Ctrl-C and requests to end.
#pragma once

#include <chrono>

#include "tools/orvexctl/failure.h"

namespace orvex::tools {

/// From now on SIGINT, SIGTERM and SIGHUP are only remembered; a second one ends the program at
/// once, with the terminal given back.
void catchInterrupts();

/// The signal that has come; 0: none.
[[nodiscard]] int interruptSignal() noexcept;
[[nodiscard]] inline bool isInterrupted() noexcept {
    return interruptSignal() != 0;
}

/// Forgets it.
void forgetInterrupt() noexcept;

/// 128 and the signal.
[[nodiscard]] ExitCode interruptedCode() noexcept;

/// Sleeps, but not longer than until an interrupt.
void sleepUnlessInterrupted(std::chrono::milliseconds duration);

}  // namespace orvex::tools
