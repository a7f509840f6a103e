/// @file
/// A port that nobody answers on.
#pragma once

#include <filesystem>
#include <string>

#include "tests/support/pseudo_terminal.h"
#include "tests/support/temporary_directory.h"

namespace orvex_test {

/// A pseudo-terminal under a path that a LightDevice takes. It needs no thread: a test that forces
/// system calls can use it.
class SilentPort {
  public:
    SilentPort() : path_(directory_.file("ttyACM0")) {
        std::filesystem::create_symlink(terminal_.path(), path_);
    }

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// The far end.
    [[nodiscard]] PseudoTerminal& terminal() noexcept { return terminal_; }

  private:
    TemporaryDirectory directory_;
    PseudoTerminal terminal_;
    std::string path_;
};

}  // namespace orvex_test
