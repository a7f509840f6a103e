/// @file
/// How the program ends.
#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace orvex::tools {

/// Exit codes; a COMMAND's own status is passed on, 128 + N when signal N ended it.
enum ExitCode : int {
    kDone = 0,
    kBadInput = 2,         ///< Arguments, a scenario or a trace that make no sense.
    kSystemRefused = 3,    ///< No pseudo-terminal, no testbed, a line that cannot be opened.
    kNotWritten = 4,       ///< The trace or standard output could not be written.
    kDeparted = 5,         ///< A client departed from the trace that is replayed.
    kCannotExecute = 126,  ///< COMMAND cannot be executed.
    kNotFound = 127,       ///< There is no such COMMAND.
};

/// Ends the program with a message for people and an exit code.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
    [[nodiscard]] ExitCode code() const noexcept { return code_; }

  private:
    ExitCode code_;
};

/// What the system calls an error number.
[[nodiscard]] inline std::string errorText(int error) {
    return std::generic_category().message(error);
}

}  // namespace orvex::tools
