/// @file
/// The directory in which everything temporary of one run stands.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "sim/pseudo_terminal.h"

namespace orvex::tools {

/// A temporary directory that goes even when this process is killed: a small process watches over
/// it. While it lives, temporary files of this process are made in it.
class Workspace {
  public:
    /// To be made before any thread.
    /// @throws Failure
    Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    ~Workspace();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// TMPDIR as this process was given it.
    [[nodiscard]] const std::optional<std::string>& givenTemporaryPlace() const noexcept {
        return given_;
    }

  private:
    const std::optional<std::string> given_;
    const std::string path_;
    sim::Descriptor lifeline_;
    pid_t guardian_ = -1;
};

}  // namespace orvex::tools
