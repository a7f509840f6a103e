/// @file
/// An open device on a line, for the exported calls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "api/device_registry.h"
#include "bench/line.h"
#include "sim/conversation.h"

namespace orvex_bench {

/// A registered device of any model with a simulated one at its far end.
class Light {
  public:
    explicit Light(OrvexType model);
    Light(const Light&) = delete;
    Light& operator=(const Light&) = delete;
    ~Light();

    [[nodiscard]] std::uint64_t handle() const noexcept { return handle_; }
    [[nodiscard]] Line& line() noexcept { return line_; }

    /// Opens the device. @return the status code
    std::uint32_t open();
    void close();
    /// The far end answers like a device of the model, as at first.
    void answerAsModel();

  private:
    Line line_;
    orvex::sim::Conversation conversation_;
    std::uint64_t handle_;
};

/// A reply of so many bytes, the carriage return included.
[[nodiscard]] inline std::string replyOf(std::size_t length) {
    return std::string(length - 1, '7') + '\r';
}

}  // namespace orvex_bench
