/// @file
/// How the program ends.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace orvex::tools {

/// The program's exit codes, as docs/orvexctl.md lists them.
enum class ExitCode : int {
    ok = 0,
    failure = 1,  ///< None of the others.
    usage = 2,
    noDevice = 3,
    permission = 4,
    busy = 5,
    deviceError = 6,
    noAnswer = 7,
    file = 8,
    interrupted = 130,  ///< 128 + SIGINT, as shells have it.
};

/// A failure that ends a command: what failed, and what to try.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& what, std::string advice = {})
        : std::runtime_error(what), code_(code), advice_(std::move(advice)) {}

    [[nodiscard]] ExitCode code() const noexcept { return code_; }
    /// Lines of advice; may be empty.
    [[nodiscard]] const std::string& advice() const noexcept { return advice_; }

  private:
    ExitCode code_;
    std::string advice_;
};

}  // namespace orvex::tools
