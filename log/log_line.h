/// @file
/// Log lines that cannot fail for want of memory.
#pragma once

#include <cstddef>
#include <new>
#include <string>
#include <string_view>

#include "log/log.h"
#include "log/sinks.h"

namespace orvex {

constexpr std::size_t kUsualLength = 96;

inline void append(std::string& text, std::string_view part) {
    text += part;
}
inline void append(std::string& text, const char* part) {
    text += part;
}
inline void append(std::string& text, unsigned part) {
    text += std::to_string(part);
}
inline void append(std::string& text, const void* part) {
    text += to_hexstring(part, true, false, false);
}

/// Logs a message that is put together from its parts, which costs nothing when its class is
/// disabled; without the memory for it the line is lost.
///
/// For lines about what has been done: a call that has opened, closed or counted something must not
/// fail only because it cannot tell.
template <typename... Parts>
void logLine(unsigned level, const Parts&... parts) {
    if (!isLogged(level)) {
        return;
    }
    try {
        std::string message;
        message.reserve(kUsualLength);
        (append(message, parts), ...);
        log(level, message);
    } catch (const std::bad_alloc&) {  // Lost.
    }
}

}  // namespace orvex
