/// @file
/// Log lines, each thread's apart.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/log_settings.h"

namespace orvex_test {

/// Collects the library's log lines while it exists; one at a time. A line belongs to the thread
/// that the library wrote it in: the one that made the call.
class ThreadLog {
  public:
    /// @param bits the classes of messages to collect
    explicit ThreadLog(std::uint32_t bits) {
        ORVEX_SetLogBits(bits);
        ORVEX_RegisterLogCallback([](const char* line) { lines().emplace_back(line); });
        ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    }

    /// This thread's lines so far, which are forgotten then.
    [[nodiscard]] static std::vector<std::string> take() { return std::exchange(lines(), {}); }

  private:
    static std::vector<std::string>& lines() {
        thread_local std::vector<std::string> collected;
        return collected;
    }

    LogSettings settings_;
};

}  // namespace orvex_test
