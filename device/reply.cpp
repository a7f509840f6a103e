#include "device/reply.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

std::int32_t clamped(long long value) noexcept {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<long long>(value, Limits::min(), Limits::max()));
}

}  // namespace

namespace orvex {

std::int32_t parseNumber(std::string_view text) {
    return clamped(std::strtoll(std::string(text).c_str(), nullptr, 10));
}

std::int32_t tenfold(std::int32_t number) noexcept {
    return clamped(10LL * number);
}

std::vector<std::string_view> split(std::string_view reply, std::string_view separators) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const std::size_t end = reply.find_first_of(separators);
        pieces.push_back(reply.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        reply.remove_prefix(end + 1);
    }
}

std::vector<std::int32_t> parseNumbers(std::string_view reply) {
    std::vector<std::int32_t> numbers;
    for (const std::string_view piece : split(reply, ",")) {
        numbers.push_back(parseNumber(piece));
    }
    return numbers;
}

std::string join(const std::vector<std::int32_t>& numbers, std::string_view separator) {
    std::string text;
    for (const std::int32_t number : numbers) {
        if (!text.empty()) {
            text += separator;
        }
        text += std::to_string(number);
    }
    return text;
}

}  // namespace orvex
