#include "tests/fuzz/support/numbers.h"

#include <algorithm>
#include <limits>

namespace orvex_fuzz {

namespace {

using Limits = std::numeric_limits<std::int32_t>;

bool isSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Takes white space and a sign. @return whether the sign is "-"
bool takeSign(std::string_view& text) {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    if (text.empty() || (text.front() != '-' && text.front() != '+')) {
        return false;
    }
    const bool isNegative = text.front() == '-';
    text.remove_prefix(1);
    return isNegative;
}

/// A hexadecimal digit's value, 16 for another character.
unsigned digitValue(char c) {
    const std::string_view digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t place = c == '\0' ? std::string_view::npos : digits.find(c);
    return place == std::string_view::npos ? 16 : static_cast<unsigned>(place % 16);
}

}  // namespace

std::int32_t decimalAt(std::string_view text) {
    const bool isNegative = takeSign(text);
    std::int64_t number = 0;
    for (std::size_t k = 0; k < text.size() && text[k] >= '0' && text[k] <= '9'; ++k) {
        // More than this does not fit in any case.
        number = std::min<std::int64_t>(number * 10 + (text[k] - '0'), 1LL << 40);
    }
    number = isNegative ? -number : number;
    return static_cast<std::int32_t>(
        std::max<std::int64_t>(Limits::min(), std::min<std::int64_t>(Limits::max(), number)));
}

std::uint64_t hexadecimalAt(std::string_view text) {
    const bool isNegative = takeSign(text);
    const bool hasPrefix = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (hasPrefix && digitValue(text[2]) < 16) {
        text.remove_prefix(2);
    }
    std::uint64_t number = 0;
    for (const char c : text) {
        const unsigned digit = digitValue(c);
        if (digit == 16) {
            break;
        }
        if (number >> 60U != 0) {
            return ~std::uint64_t{0};
        }
        number = number * 16 + digit;
    }
    return isNegative ? 0 - number : number;
}

std::int32_t timesTen(std::int32_t number) {
    if (number > Limits::max() / 10) {
        return Limits::max();
    }
    return number < Limits::min() / 10 ? Limits::min() : number * 10;
}

std::string_view takePiece(std::string_view& text, std::string_view separators) {
    std::size_t length = 0;
    while (length < text.size() && separators.find(text[length]) == std::string_view::npos) {
        ++length;
    }
    const std::string_view piece = text.substr(0, length);
    text.remove_prefix(length < text.size() ? length + 1 : length);
    return piece;
}

std::vector<std::string> piecesOf(std::string_view text, std::string_view separators) {
    std::vector<std::string> pieces;
    bool isLast = false;
    while (!isLast) {
        const std::size_t before = text.size();
        pieces.emplace_back(takePiece(text, separators));
        isLast = pieces.back().size() == before;
    }
    return pieces;
}

std::vector<std::int32_t> decimalsIn(std::string_view text) {
    std::vector<std::int32_t> numbers;
    bool isLast = false;
    while (!isLast) {
        const std::size_t before = text.size();
        const std::string_view piece = takePiece(text, ",");
        numbers.push_back(decimalAt(piece));
        isLast = piece.size() == before;
    }
    return numbers;
}

std::string digitsOf(std::uint64_t number, unsigned base, bool upperCase) {
    const char* const digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text;
    do {
        text.insert(text.begin(), digits[number % base]);
        number /= base;
    } while (number != 0);
    return text;
}

}  // namespace orvex_fuzz
