/// @file
/// Bytes as people read them in a trace.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvex::tools {

/// The bytes with "\r", "\n", "\\" and "\x1f" for what cannot be printed.
[[nodiscard]] std::string printable(std::string_view bytes);

/// The bytes again; nothing when the text holds a backslash that means nothing.
[[nodiscard]] std::optional<std::string> bytesOf(std::string_view text);

}  // namespace orvex::tools
