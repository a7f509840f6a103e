/// @file
/// Replies taken apart.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvex_soak {

/// The digits at the text's start as a number; 0 without any.
inline std::int32_t numberIn(const std::string& text) {
    std::int32_t number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') {
            break;
        }
        number = number * 10 + (digit - '0');
    }
    return number;
}

/// The text's pieces between separators.
inline std::vector<std::string> piecesOf(const std::string& text, const std::string& separators) {
    std::vector<std::string> pieces(1);
    for (const char byte : text) {
        if (separators.find(byte) != std::string::npos) {
            pieces.emplace_back();
        } else {
            pieces.back() += byte;
        }
    }
    return pieces;
}

inline std::vector<std::int32_t> numbersIn(const std::string& text) {
    std::vector<std::int32_t> numbers;
    for (const std::string& piece : piecesOf(text, ",")) {
        numbers.push_back(numberIn(piece));
    }
    return numbers;
}

inline void append(std::string& list, std::int32_t number) {
    list += (list.empty() ? "" : ",") + std::to_string(number);
}

}  // namespace orvex_soak
