/// @file
/// Suggestions for names that are not known.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvex::tools {

[[nodiscard]] std::string lowerCase(std::string_view text);

/// Up to three of the known names that look most like a given one, the nearest first; none when
/// nothing is near.
[[nodiscard]] std::vector<std::string> nearest(std::string_view name,
                                               const std::vector<std::string>& known);

/// "; did you mean A, B or C?", or with nothing near and few names "; known: A, B, C", or "".
[[nodiscard]] std::string suggestion(std::string_view name, const std::vector<std::string>& known);

/// "A, B or C".
[[nodiscard]] std::string alternatives(const std::vector<std::string>& names);

}  // namespace orvex::tools
