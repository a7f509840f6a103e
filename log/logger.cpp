#include "log/logger.h"

#include <iostream>
#include <new>

#include "log/log.h"
#include "log/sinks.h"

Logger::Logger(unsigned level) : level_(level) {}

Logger::~Logger() {
    flush();
}

void Logger::flush() {
    const std::lock_guard<std::mutex> guard(mutex_);
    try {
        write();
    } catch (const std::bad_alloc&) {  // Lost.
    }
    stream_.str("");
    stream_.clear();
}

void Logger::write() {
    const std::string body = stream_.str();
    if (body.empty()) {
        return;
    }
    emit(orvex::logPrefix(level_) + body);
}

std::mutex& Logger::mutex() noexcept {
    return mutex_;
}

bool Logger::isEnabled() const noexcept {
    return (gl_log_bits & level_) != 0;
}

void Logger::emit(const std::string& line) {
    switch (log_method_) {
        case LOG_METHOD_FILE:
            appendToFile(line);
            break;
        case LOG_METHOD_CALLBACK:
            if (const OrvexLogCallback receiver = log_callback_; receiver != nullptr) {
                receiver(line.c_str());
            }
            break;
        case LOG_METHOD_STDOUT:
            orvex::writeLine(std::cout, line);
            break;
        default:
            break;
    }
}

void Logger::appendToFile(const std::string& line) {
    std::string path;
    {
        const std::lock_guard<std::mutex> guard(filename_mutex_);
        path = log_filename_;
    }
    if (path.empty()) {
        return;
    }
    orvex::appendLine(path, line);
}

void Logger::setLogMethod(int method) {
    log_method_ = method;
}

void Logger::setLogFile(const std::string& path) {
    const std::lock_guard<std::mutex> guard(filename_mutex_);
    log_filename_ = path;
}

void Logger::setLogCallback(OrvexLogCallback receiver) {
    log_callback_ = receiver;
}
