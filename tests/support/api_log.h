/// @file
/// The log lines of the loaded library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvex_test {

/// Collects log lines, whole and in order, while it exists; then the log is as it is at first. One
/// at a time; lines may come from any thread.
class ApiLog {
  public:
    /// @param bits the classes of messages to collect
    explicit ApiLog(std::uint32_t bits = 0x7F);
    ApiLog(const ApiLog&) = delete;
    ApiLog& operator=(const ApiLog&) = delete;
    ~ApiLog();

    /// The lines so far, which are forgotten then.
    std::vector<std::string> take();
    /// Forgets the lines so far and goes on with these classes of messages.
    void restart(std::uint32_t bits);
};

/// Puts the log's settings to what they are when the library is loaded.
void resetLog();

/// A handle as lines show it: "0x" and lower-case digits.
[[nodiscard]] std::string handleText(std::uint64_t handle);
/// The low 32 bits of a handle as a scan's lines show them: upper-case digits.
[[nodiscard]] std::string lowBitsText(std::uint64_t handle);

}  // namespace orvex_test
