/// @file
/// One command: what is sent for it, and what the caller's buffer holds afterwards.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/fuzz/support/fake_port.h"

namespace orvex_fuzz {

/// The request prefix of a model's command, null when the model lacks it.
[[nodiscard]] const std::string* requestPrefix(unsigned model, const std::string& name);

/// An exchange's request is the text, ended by a carriage return unless it holds one.
void requireRequest(const Exchange& exchange, const std::string& text);

/// A reply ends with its first carriage return, or is cut at 1024 bytes.
void requireWholeReply(const std::string& reply);

/// A caller's buffer that tells what was written, also behind its end.
class ReplyBuffer {
  public:
    explicit ReplyBuffer(std::uint32_t size);

    [[nodiscard]] char* data() noexcept { return bytes_.data(); }
    /// The reply is there, or all but its last character where just that does not fit; the rest of
    /// the buffer is zero, and nothing is written behind it.
    void requireReply(const std::string& reply) const;
    void requireUntouched() const;

  private:
    [[nodiscard]] bool isUntouchedFrom(std::size_t from) const;

    std::size_t size_;
    std::vector<char> bytes_;
};

}  // namespace orvex_fuzz
