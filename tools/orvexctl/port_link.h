/// @file
/// Links to ports, such as those of /dev/orvex/by-id. The library knows ports by the names that the
/// kernel gives them.
#pragma once

#include <string>

namespace orvex::tools {

/// What the library opens under this name.
[[nodiscard]] bool isPortName(const std::string& path);

/// The first port name on the way along links that begins with @p path, or @p path.
[[nodiscard]] std::string portBehind(const std::string& path);

/// Whether a path is the port or leads to it.
[[nodiscard]] bool leadsTo(const std::string& path, const std::string& port);

}  // namespace orvex::tools
