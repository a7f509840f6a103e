/// @file
/// An existing terminal line in raw mode.
#pragma once

#include <termios.h>

#include <string>

#include "sim/pseudo_terminal.h"

namespace orvex::tools {

/// An open line; gets its settings back when it is closed.
class TerminalLine {
  public:
    /// @throws Failure when it cannot be opened or is no terminal
    explicit TerminalLine(const std::string& path);
    TerminalLine(const TerminalLine&) = delete;
    TerminalLine& operator=(const TerminalLine&) = delete;
    ~TerminalLine();

    [[nodiscard]] int descriptor() const noexcept { return line_.get(); }

  private:
    const sim::Descriptor line_;
    termios before_{};
};

}  // namespace orvex::tools
