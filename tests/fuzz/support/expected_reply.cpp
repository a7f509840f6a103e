#include "tests/fuzz/support/expected_reply.h"

#include <algorithm>
#include <cstring>

#include "device/models.h"
#include "tests/fuzz/support/properties.h"

namespace orvex_fuzz {

namespace {

constexpr std::size_t kGuard = 32;
constexpr char kUntouched = '\x5A';

const std::string* in(const CommandTable& table, const std::string& name) {
    const auto found = table.find(name);
    return found != table.end() ? &found->second : nullptr;
}

}  // namespace

const std::string* requestPrefix(unsigned model, const std::string& name) {
    switch (model) {
        case 7:
            return in(gl_cmd_spruce, name);
        case 8:
            return in(gl_cmd_tamar, name);
        case 9:
            return in(gl_cmd_willow, name);
        default:
            const std::string* const basic = in(gl_cmd_lamp, name);
            return basic != nullptr || model == 0 ? basic : in(gl_cmd_lamp_ext, name);
    }
}

void requireRequest(const Exchange& exchange, const std::string& text) {
    if (exchange.fault == Exchange::Fault::Purge) {
        holds(exchange.request.empty(), "nothing is sent to a port that cannot be purged");
        return;
    }
    const bool isWhole = text.find('\r') != std::string::npos;
    holds(exchange.request == (isWhole ? text : text + '\r'), "a command is sent with its value");
}

void requireWholeReply(const std::string& reply) {
    holds(!reply.empty() && reply.size() <= 1024, "a reply has 1 to 1024 bytes");
    const std::size_t end = reply.find('\r');
    holds(end == reply.size() - 1 || (end == std::string::npos && reply.size() == 1024),
          "a reply ends with its first carriage return, or is cut");
}

ReplyBuffer::ReplyBuffer(std::uint32_t size) : size_(size), bytes_(size + kGuard, kUntouched) {}

void ReplyBuffer::requireReply(const std::string& reply) const {
    holds(size_ >= reply.size() && size_ > 0, "a reply fits");
    const std::size_t kept = std::min(reply.size(), size_ - 1);
    holds(std::memcmp(bytes_.data(), reply.data(), kept) == 0, "the buffer holds the reply");
    const auto rest = bytes_.begin() + static_cast<std::ptrdiff_t>(kept);
    const auto end = bytes_.begin() + static_cast<std::ptrdiff_t>(size_);
    holds(std::all_of(rest, end, [](char c) { return c == '\0'; }), "the rest of it is zero");
    holds(isUntouchedFrom(size_), "nothing is written behind a buffer");
}

void ReplyBuffer::requireUntouched() const {
    holds(isUntouchedFrom(0), "a failing command leaves the buffer alone");
}

bool ReplyBuffer::isUntouchedFrom(std::size_t from) const {
    return std::all_of(bytes_.begin() + static_cast<std::ptrdiff_t>(from), bytes_.end(),
                       [](char c) { return c == kUntouched; });
}

}  // namespace orvex_fuzz
