/// @file
/// How far a script has come.
#pragma once

#include <cstddef>
#include <string>

namespace orvex::tools {

/// A bar on standard error; nothing when that is no terminal.
class ProgressBar {
  public:
    explicit ProgressBar(std::size_t total);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar() { clear(); }

    void show(std::size_t done, const std::string& what);
    /// Takes the bar away, before other output.
    void clear();

  private:
    std::size_t total_;
    bool enabled_;
};

}  // namespace orvex::tools
