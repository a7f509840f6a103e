/// @file
/// The library's log lines as a test sees them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/log_settings.h"

namespace orvex_test {

/// Log lines, whole and in order.
using Lines = std::vector<std::string>;

/// Collects every log line while it exists. One at a time; lines may come from any thread.
class LogCapture {
  public:
    /// @param bits the classes of messages to collect
    explicit LogCapture(std::uint32_t bits = 0x7F);
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    /// The lines so far.
    [[nodiscard]] Lines lines() const;
    /// The lines so far, which are forgotten then.
    Lines take();

  private:
    LogSettings settings_;
};

}  // namespace orvex_test
