#include "log/log.h"

#include <cstdarg>
#include <cstdio>
#include <limits>
#include <new>
#include <stdexcept>
#include <vector>

#include "log/sinks.h"

namespace {

std::string format(const char* text, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, text, arguments);
    if (length < 0 || length == std::numeric_limits<int>::max()) {
        va_end(again);
        if (length < 0) {
            throw std::logic_error("clog: the message cannot be formatted");
        }
        throw std::length_error("clog: the message is too long");
    }
    std::vector<char> buffer(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(buffer.data(), buffer.size(), text, again);
    va_end(again);
    return buffer.data();
}

void logFormatted(unsigned level, const char* text, std::va_list arguments) {
    try {
        log(level, format(text, arguments));
    } catch (const std::bad_alloc&) {  // Lost.
    }
}

/// Passes on what precedes a message, piece by piece.
template <typename Take>
void eachPrefix(unsigned level, const Take& take) {
    if (orvex::isLogged(LOG_BIT_TIMESTAMP)) {
        take("[");
        take(orvex::localTime());
        take("] ");
    }
    if ((level & LOG_BIT_ERROR) != 0) {
        take("Error: ");
    }
    if ((level & LOG_BIT_WARNING) != 0) {
        take("Warning: ");
    }
}

/// Apart from log(), which without it needs no frame of its own for the test of the mask.
__attribute__((noinline)) void logEnabled(unsigned level, const std::string& message) {
    const bool isError = (level & LOG_BIT_ERROR) != 0;
    try {
        const std::string prefix = orvex::logPrefix(level);
        if (prefix.empty()) {
            orvex::sendToSink(message, isError);
        } else {
            orvex::sendToSink(prefix + message, isError);
        }
    } catch (const std::bad_alloc&) {  // Lost.
    }
}

}  // namespace

void buildLogMessage(std::ostream& out, unsigned level) {
    eachPrefix(level, [&out](const auto& piece) { out << piece; });
}

std::string orvex::logPrefix(unsigned level) {
    std::string prefix;
    eachPrefix(level, [&prefix](const auto& piece) { prefix += piece; });
    return prefix;
}

void log(unsigned level, const std::string& message) {
    if (orvex::isLogged(level)) {
        logEnabled(level, message);
    }
}

void log(const std::string& message) {
    log(LOG_BIT_INFO, message);
}

void logerr(const std::string& message) {
    log(LOG_BIT_ERROR, message);
}

void clog(unsigned level, const char* text, ...) {
    std::va_list arguments;
    va_start(arguments, text);
    logFormatted(level, text, arguments);
    va_end(arguments);
}

void clog(const char* text, ...) {
    std::va_list arguments;
    va_start(arguments, text);
    logFormatted(LOG_BIT_INFO, text, arguments);
    va_end(arguments);
}
