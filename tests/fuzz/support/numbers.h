/// @file
/// Numbers and texts as devices mean them, worked out digit by digit.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvex_fuzz {

/// The decimal number at a text's start: white space, a sign, digits; 0 without digits, held
/// within 32 bits. A NUL ends the text.
[[nodiscard]] std::int32_t decimalAt(std::string_view text);
/// The hexadecimal number at a text's start as C reads it: white space, a sign, "0x", digits; all
/// ones when it does not fit; negated modulo 2^64 behind "-".
[[nodiscard]] std::uint64_t hexadecimalAt(std::string_view text);
/// A number times ten, held within 32 bits.
[[nodiscard]] std::int32_t timesTen(std::int32_t number);
/// Takes the text up to the next separator, and the separator, from a text's start.
[[nodiscard]] std::string_view takePiece(std::string_view& text, std::string_view separators);
/// The texts between separators.
[[nodiscard]] std::vector<std::string> piecesOf(std::string_view text, std::string_view separators);
/// The decimal numbers of the texts between commas.
[[nodiscard]] std::vector<std::int32_t> decimalsIn(std::string_view text);
/// A number's digits in a base up to 16.
[[nodiscard]] std::string digitsOf(std::uint64_t number, unsigned base, bool upperCase);

}  // namespace orvex_fuzz
