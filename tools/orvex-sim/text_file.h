/// @file
/// Reading a file that a person names.
#pragma once

#include <string>

namespace orvex::tools {

/// The whole file.
/// @throws Failure that names it when it cannot be read
[[nodiscard]] std::string readText(const std::string& path);

}  // namespace orvex::tools
