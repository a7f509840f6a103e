#include "log/log.h"

#include <cstdarg>
#include <cstdio>
#include <limits>
#include <new>
#include <sstream>
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

}  // namespace

void buildLogMessage(std::ostream& out, unsigned level) {
    if ((gl_log_bits & LOG_BIT_TIMESTAMP) != 0) {
        out << "[" << orvex::localTime() << "] ";
    }
    if ((level & LOG_BIT_ERROR) != 0) {
        out << "Error: ";
    }
    if ((level & LOG_BIT_WARNING) != 0) {
        out << "Warning: ";
    }
}

void log(unsigned level, const std::string& message) {
    if ((gl_log_bits & level) == 0) {
        return;
    }
    try {
        std::ostringstream line;
        buildLogMessage(line, level);
        line << message;
        if (line) {
            orvex::sendToSink(line.str(), (level & LOG_BIT_ERROR) != 0);
        }
    } catch (const std::bad_alloc&) {  // Lost.
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
