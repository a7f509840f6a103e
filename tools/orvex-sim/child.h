/// @file
/// The program that runs with the simulated devices.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/orvex-sim/signals.h"

namespace orvex::tools {

/// A process that is started here and ends with this one at the latest.
class Child {
  public:
    /// @param environment "NAME=value" texts
    /// @param signals what it is to inherit
    /// @throws Failure with the shell's exit codes when it cannot be started
    Child(const std::vector<std::string>& command, const std::vector<std::string>& environment,
          const Inheritance& signals);
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    /// Kills it if it still runs.
    ~Child();

    void send(int signal) const noexcept;
    /// Its exit status once it has ended, 128 + N when signal N ended it. Does not wait.
    [[nodiscard]] std::optional<int> status();

  private:
    pid_t pid_ = -1;
};

/// This process's environment for a child: with the library preloaded before what is preloaded
/// already, and its own place for temporary files.
[[nodiscard]] std::vector<std::string> childEnvironment(
    const std::string& preload, const std::optional<std::string>& temporaryPlace);

}  // namespace orvex::tools
