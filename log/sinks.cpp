#include "log/sinks.h"

#include <ctime>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "log/log.h"

void stdOut(const std::string& message) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    orvex::writeLine(std::cout, message);
}

void stdErr(const std::string& message) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    orvex::writeLine(std::cerr, message);
}

void fileLog(const std::string& message) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    std::ofstream file(gl_log_filename, std::ios::app);
    file << message << '\n' << std::flush;
}

void callback(const std::string& message) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    if (gl_cb != nullptr) {
        gl_cb(message.c_str());
    }
}

namespace orvex {

void writeLine(const std::ostream& standard, const std::string& line) {
    std::ostream out(standard.rdbuf());
    out << line << '\n' << std::flush;
}

void sendToSink(const std::string& line, bool isError) {
    switch (gl_log_method) {
        case LOG_METHOD_FILE:
            return fileLog(line);
        case LOG_METHOD_CALLBACK:
            return callback(line);
        case LOG_METHOD_STDOUT:
            return isError ? stdErr(line) : stdOut(line);
        default:
            return;
    }
}

std::string localTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::ostringstream text;
    text.exceptions(std::ios::badbit);  // Want of memory.
    text << std::put_time(&local, "%F %T");
    return text.str();
}

}  // namespace orvex
