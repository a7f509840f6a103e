/// @file
/// Replies that must make sense.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orvex::tools {

/// The numbers of a reply.
/// @param what what was asked where, for the message
/// @throws Failure with ExitCode::deviceError when a piece is no number or there are too few
[[nodiscard]] std::vector<int> requireNumbers(const std::string& what, const std::string& reply,
                                              std::size_t atLeast);

/// The one number of a reply.
[[nodiscard]] int requireNumber(const std::string& what, const std::string& reply);

/// A reply as it can be shown: control characters and bytes that are not UTF-8 as "\x07".
[[nodiscard]] std::string printable(const std::string& reply);

}  // namespace orvex::tools
