/// @file
/// What the process writes to standard output or standard error.
#pragma once

#include <string>

namespace orvex_test {

/// Redirects a descriptor while it exists. It does not flush any stream: what it has caught was
/// written by then.
class OutputCapture {
  public:
    /// @param descriptor STDOUT_FILENO or STDERR_FILENO
    explicit OutputCapture(int descriptor);
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;
    ~OutputCapture();

    /// What was written so far.
    [[nodiscard]] std::string text() const;

  private:
    int descriptor_;
    int original_;
    int file_;
};

}  // namespace orvex_test
