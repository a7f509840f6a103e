#include "log/sinks.h"

#include <cxxabi.h>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string_view>

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
    orvex::appendLine(gl_log_filename, message);
}

void callback(const std::string& message) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    if (gl_cb != nullptr) {
        gl_cb(message.c_str());
    }
}

namespace orvex {

namespace {

constexpr mode_t kReadWrite = 0666;  // The umask takes its part.

}  // namespace

void writeLine(const std::ostream& standard, const std::string& line) {
    std::streambuf* const buffer = standard.rdbuf();
    if (buffer == nullptr) {
        return;
    }
    const auto length = static_cast<std::streamsize>(line.size());
    try {
        if (buffer->sputn(line.data(), length) == length && buffer->sputc('\n') == '\n') {
            buffer->pubsync();
        }
    } catch (const abi::__forced_unwind&) {
        throw;       // The thread is being cancelled.
    } catch (...) {  // Lost, as a stream's own operators lose it.
    }
}

void appendLine(const std::string& path, const std::string& line) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, kReadWrite);
    if (file < 0) {
        return;
    }
    std::string_view rest = line;
    for (bool isWritten = false; !isWritten;) {
        char newline = '\n';
        const std::array<iovec, 2> pieces{
            {{const_cast<char*>(rest.data()), rest.size()}, {&newline, 1}}};
        const ssize_t count = ::writev(file, pieces.data(), pieces.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        const auto written = static_cast<std::size_t>(count);
        isWritten = written > rest.size();
        rest.remove_prefix(std::min(written, rest.size()));
    }
    ::close(file);
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
