/// @file
/// The process-wide log: classes of messages, destinations, and the ways to write a line.
///
/// A message carries one class bit (LOG_BIT_…) and is written when the mask gl_log_bits shares a
/// bit with it. Its text has no newline at the end; the sinks add one. Every function here may be
/// called from any thread; what fails to be written, or finds no memory, is lost without a word,
/// and only a mutex that cannot be locked throws (std::system_error).
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>

#include "include/qtr_orvex.h"
#include "log/export.h"
#include "log/hexstring.h"
#include "log/logger.h"

/// The mask of enabled message classes, 0x7F at first.
extern ORVEX_API std::atomic<std::uint32_t>& gl_log_bits;
/// The destination, a LOG_METHOD_… value.
extern ORVEX_API std::atomic<int>& gl_log_method;
/// The log file's path, "./lib_debug.log" at first. Guarded by gl_lock.
extern ORVEX_API std::string& gl_log_filename;
/// The log callback, null at first. Guarded by gl_lock.
extern ORVEX_API OrvexLogCallback& gl_cb;
/// Serialises the sinks and the configuration of the log. Not recursive.
extern ORVEX_API std::mutex& gl_lock;

/// Writes a line to standard output and flushes it.
ORVEX_API void stdOut(const std::string& message);
/// Writes a line to standard error and flushes it.
ORVEX_API void stdErr(const std::string& message);
/// Appends a line to the log file, which is opened and closed for it.
ORVEX_API void fileLog(const std::string& message);
/// Passes a line, without a newline, to the log callback, if there is one.
ORVEX_API void callback(const std::string& message);

/// Writes what precedes a message of the class @p level: time stamp, "Error: ", "Warning: ".
ORVEX_API void buildLogMessage(std::ostream& out, unsigned level);

/// Writes a block that tells time and settings of the log. For applications; the library itself
/// never calls it.
ORVEX_API void logHeader();

/// Logs a message of the class @p level; a disabled class costs one test.
ORVEX_API void log(unsigned level, const std::string& message);
/// Logs a message of the class LOG_BIT_INFO.
ORVEX_API void log(const std::string& message);
/// Logs a message of the class LOG_BIT_ERROR.
ORVEX_API void logerr(const std::string& message);

/// Formats as printf does and logs the text, whatever its length, as of the class @p level.
/// @throws std::logic_error when the text cannot be formatted
/// @throws std::length_error when the text is too long
ORVEX_API void clog(unsigned level, const char* format, ...) __attribute__((format(printf, 2, 3)));
/// The same with the class LOG_BIT_INFO.
ORVEX_API void clog(const char* format, ...) __attribute__((format(printf, 1, 2)));
