#include "tools/orvex-sim/trace_text.h"

#include <charconv>
#include <system_error>

namespace orvex::tools {

namespace {

constexpr int kHexadecimal = 16;

std::string hexadecimal(unsigned char byte) {
    constexpr const char* kDigits = "0123456789abcdef";
    return {'\\', 'x', kDigits[byte / kHexadecimal], kDigits[byte % kHexadecimal]};
}

std::string printableByte(char byte) {
    switch (byte) {
        case '\r':
            return "\\r";
        case '\n':
            return "\\n";
        case '\\':
            return "\\\\";
        default:
            break;
    }
    const bool isPrintable = byte >= ' ' && byte <= '~';
    return isPrintable ? std::string(1, byte) : hexadecimal(static_cast<unsigned char>(byte));
}

/// Takes what follows a backslash off the text.
std::optional<char> takeEscaped(std::string_view& text) {
    const char letter = text.empty() ? '\0' : text.front();
    text.remove_prefix(text.empty() ? 0 : 1);
    switch (letter) {
        case 'r':
            return '\r';
        case 'n':
            return '\n';
        case '\\':
            return '\\';
        default:
            break;
    }
    unsigned number = 0;
    const std::string_view digits = text.substr(0, 2);
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number, kHexadecimal);
    if (letter != 'x' || digits.size() != 2 || stop != end || error != std::errc{}) {
        return std::nullopt;
    }
    text.remove_prefix(2);
    return static_cast<char>(number);
}

}  // namespace

std::string printable(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        text += printableByte(byte);
    }
    return text;
}

std::optional<std::string> bytesOf(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        std::optional<char> byte = text.front();
        text.remove_prefix(1);
        if (byte == '\\') {
            byte = takeEscaped(text);
        }
        if (!byte) {
            return std::nullopt;
        }
        bytes += *byte;
    }
    return bytes;
}

}  // namespace orvex::tools
