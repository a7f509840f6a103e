#include "tools/orvexctl/driver_log.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "include/qtr_orvex.h"
#include "tools/orvexctl/failure.h"

namespace orvex::tools {

namespace {

struct DriverLog {
    bool shown = false;
    std::string path;
    std::ofstream file;
    int writeError = 0;
    std::string lastError;
};

// Devices that are released when the library is unloaded may still log.
DriverLog& driverLog() {
    static auto* const log = new DriverLog;
    return *log;
}

void writeToFile(DriverLog& log, const char* text) {
    errno = 0;
    log.file << text << '\n' << std::flush;
    if (!log.file && log.writeError == 0) {
        log.writeError = errno != 0 ? errno : EIO;
    }
}

void receive(const char* text) {
    constexpr const char* kError = "Error: ";
    DriverLog& log = driverLog();
    const char* error = std::strstr(text, kError);
    if (error != nullptr) {
        log.lastError = error + std::strlen(kError);
    }
    if (!log.path.empty()) {
        writeToFile(log, text);
    } else if (log.shown) {
        std::cerr << text << '\n';
    }
}

std::uint32_t classesOf(const CommonOptions& options) {
    constexpr std::uint32_t kVerbose =
        LOG_BIT_ERROR | LOG_BIT_WARNING | LOG_BIT_INFO | LOG_BIT_SERIAL | LOG_BIT_DETAIL;
    const bool toFile = !options.log.empty();
    std::uint32_t bits = LOG_BIT_ERROR;
    if (options.trace || (toFile && !options.verbose)) {
        bits = kVerbose | LOG_BIT_TRAFFIC;
    } else if (options.verbose) {
        bits = kVerbose;
    }
    return toFile ? bits | LOG_BIT_TIMESTAMP : bits;
}

}  // namespace

void startDriverLog(const CommonOptions& options) {
    DriverLog& log = driverLog();
    log.shown = options.verbose || options.trace;
    log.path = options.log;
    if (!log.path.empty()) {
        log.file.open(log.path, std::ios::app);
        if (!log.file) {
            throw Failure(ExitCode::file,
                          "the log file " + log.path + " cannot be opened: " + std::strerror(errno),
                          "choose another file with --log");
        }
    }
    ORVEX_RegisterLogCallback(receive);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    ORVEX_SetLogBits(classesOf(options));
}

void endDriverLog() {
    ORVEX_RegisterLogCallback(nullptr);
    const DriverLog& log = driverLog();
    if (log.writeError != 0) {
        throw Failure(ExitCode::file,
                      "the log file " + log.path + " is incomplete: " +
                          std::strerror(log.writeError) + "; the command itself was carried out",
                      "make room, or choose another file with --log");
    }
}

std::string lastError() {
    return driverLog().lastError;
}

void forgetLastError() {
    driverLog().lastError.clear();
}

}  // namespace orvex::tools
