/// @file
/// Reading a device's replies.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// The decimal number at the start of a text; 0 without digits, clamped when it does not fit.
[[nodiscard]] std::int32_t parseNumber(std::string_view text);

/// The number ten times as large, clamped when it does not fit.
[[nodiscard]] std::int32_t tenfold(std::int32_t number) noexcept;

/// The pieces of a reply between separators; empty pieces keep their places.
/// @param separators each character of it separates
[[nodiscard]] std::vector<std::string_view> split(std::string_view reply,
                                                  std::string_view separators);

/// The numbers of a reply's pieces between commas.
[[nodiscard]] std::vector<std::int32_t> parseNumbers(std::string_view reply);

/// The numbers in decimal with a separator between them.
[[nodiscard]] std::string join(const std::vector<std::int32_t>& numbers,
                               std::string_view separator);

}  // namespace orvex
