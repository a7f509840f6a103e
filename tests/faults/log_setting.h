/// @file
/// Where the library's log lines go in a test.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/temporary_directory.h"

namespace orvex_faults {

enum class LogTo { Callback, File, Output, Nowhere };

/// Sends the log's lines to one place while it exists, all classes of them; nowhere: none.
class LogSetting {
  public:
    explicit LogSetting(LogTo place);
    LogSetting(const LogSetting&) = delete;
    LogSetting& operator=(const LogSetting&) = delete;
    ~LogSetting();

    /// The lines since the last call.
    [[nodiscard]] std::vector<std::string> take();

  private:
    LogTo place_;
    orvex_test::TemporaryDirectory directory_;
    std::string file_;
};

[[nodiscard]] const char* nameOf(LogTo place);

}  // namespace orvex_faults
