/// @file
/// A log message built by streaming.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <sstream>
#include <string>

#include "include/qtr_orvex.h"
#include "log/export.h"

/// One message, put together with << and written when the object goes out of scope.
///
/// Other than log(), under LOG_METHOD_STDOUT it writes errors, too, to standard output.
class ORVEX_API Logger {
  public:
    /// Begins a message of the class @p level (LOG_BIT_…).
    explicit Logger(unsigned level);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    /// Writes the message. An exception on the way, of a callback for example, ends the process;
    /// want of memory is none: the message is lost, or cut off.
    ~Logger();

    /// Appends a value, unless the message's class is disabled at this moment.
    template <typename T>
    Logger& operator<<(const T& value) {
        const std::lock_guard<std::mutex> guard(mutex());
        if (isEnabled()) {
            stream_ << value;
        }
        return *this;
    }

    /// Writes the message, if there is any text, and starts an empty one.
    void flush();

    /// Mirrors gl_log_method; called by the logging calls while they hold gl_lock.
    static void setLogMethod(int method);
    /// Mirrors gl_log_filename; called by the logging calls while they hold gl_lock.
    static void setLogFile(const std::string& path);
    /// Mirrors gl_cb; called by the logging calls while they hold gl_lock.
    static void setLogCallback(OrvexLogCallback receiver);

  private:
    [[nodiscard]] static std::mutex& mutex() noexcept;
    [[nodiscard]] bool isEnabled() const noexcept;
    ORVEX_LOCAL void write();
    ORVEX_LOCAL static void emit(const std::string& line);
    ORVEX_LOCAL static void appendToFile(const std::string& line);

    ORVEX_LOCAL static std::mutex mutex_;
    ORVEX_LOCAL static std::atomic<int> log_method_;
    ORVEX_LOCAL static std::atomic<OrvexLogCallback> log_callback_;
    ORVEX_LOCAL static std::string log_filename_;
    /// Held only while log_filename_ is copied: a setter cannot wait for mutex_, which a callback
    /// that calls the setter has above it.
    ORVEX_LOCAL static std::mutex filename_mutex_;

    std::uint32_t level_;
    std::ostringstream stream_;
};
