#include "tools/orvexctl/replies.h"

#include <cctype>
#include <cstdio>
#include <string_view>

#include "device/reply.h"
#include "tools/orvexctl/failure.h"

namespace orvex::tools {

namespace {

bool isNumber(std::string_view text) {
    while (!text.empty() && text.front() == ' ') {
        text.remove_prefix(1);
    }
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        text.remove_prefix(1);
    }
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

[[noreturn]] void failNonsense(const std::string& what, const std::string& reply,
                               const std::string& expected) {
    throw Failure(ExitCode::deviceError,
                  what + ": the device answered \"" + printable(reply) + "\"; " + expected,
                  "see that the model is right and that no other program talks to the device");
}

/// The length of the UTF-8 character at the start of a text; 0: there is none to be shown.
std::size_t characterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {
        return std::isprint(first) != 0 ? 1 : 0;
    }
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
    if (length == 0 || first > 0xF4 || text.size() < length) {
        return 0;
    }
    for (const char next : text.substr(1, length - 1)) {
        if ((static_cast<unsigned char>(next) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    return length;
}

std::string escaped(char byte) {
    char text[sizeof "\\x00"];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

}  // namespace

std::vector<int> requireNumbers(const std::string& what, const std::string& reply,
                                std::size_t atLeast) {
    std::size_t position = 0;
    for (const std::string_view piece : split(reply, ",")) {
        ++position;
        if (!isNumber(piece)) {
            failNonsense(what, reply,
                         "entry " + std::to_string(position) + ", \"" +
                             printable(std::string(piece)) + "\", is no number");
        }
    }
    if (position < atLeast) {
        failNonsense(
            what, reply,
            "expected " + std::to_string(atLeast) + " numbers, got " + std::to_string(position));
    }
    const std::vector<std::int32_t> numbers = parseNumbers(reply);
    return {numbers.begin(), numbers.end()};
}

int requireNumber(const std::string& what, const std::string& reply) {
    return requireNumbers(what, reply, 1).front();
}

std::string printable(const std::string& reply) {
    std::string text;
    for (std::string_view rest = reply; !rest.empty();) {
        const std::size_t length = characterLength(rest);
        text += length > 0 ? std::string(rest.substr(0, length)) : escaped(rest.front());
        rest.remove_prefix(length > 0 ? length : 1);
    }
    return text;
}

}  // namespace orvex::tools
