/// @file
/// Whether this user may use a port.
#pragma once

#include <string>

namespace orvex::tools {

/// A port's node and what this user may do with it.
struct PortAccess {
    bool exists = false;
    bool isDevice = false;  ///< A character device.
    bool allowed = false;   ///< May be read and written.
    std::string mode;       ///< "crw-rw----"
    std::string owner;
    std::string group;
    std::string user;  ///< Who asks.
    bool isMember = false;
};

[[nodiscard]] PortAccess accessTo(const std::string& port);

/// What is in the way: "/dev/ttyACM0 belongs to root:dialout (crw-rw----) and user anna is not in
/// the group dialout".
[[nodiscard]] std::string refusalText(const std::string& port, const PortAccess& access);

/// What to do about it: the group and the udev rule.
[[nodiscard]] std::string accessAdvice(const PortAccess& access);

/// @throws Failure unless the port is a device that this user may use and, without @p force, no
///         other program holds
void requireUsable(const std::string& port, bool force);

}  // namespace orvex::tools
