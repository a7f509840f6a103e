/// @file
/// Keeps the log's settings from one test out of the next.
#pragma once

#include <cstdint>
#include <string>

#include "include/qtr_orvex.h"

namespace orvex_test {

/// Puts the log's settings back, at its end, to what they were at its beginning.
class LogSettings {
  public:
    LogSettings();
    LogSettings(const LogSettings&) = delete;
    LogSettings& operator=(const LogSettings&) = delete;
    ~LogSettings();

  private:
    std::uint32_t bits_;
    int mode_;
    std::string file_;
    OrvexLogCallback callback_;
};

}  // namespace orvex_test
