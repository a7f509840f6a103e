/// @file
/// What log lines are compared with.
#pragma once

#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>

#include <memory>
#include <mutex>
#include <string>

namespace orvex_bench {

/// A file that goes with the object.
class TemporaryFile {
  public:
    TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
};

/// Standard output goes into a file while such an object lives.
class StandardOutputInto {
  public:
    explicit StandardOutputInto(const char* path);
    StandardOutputInto(const StandardOutputInto&) = delete;
    StandardOutputInto& operator=(const StandardOutputInto&) = delete;
    ~StandardOutputInto();

  private:
    int before_;
};

/// @name The floors
/// The least that does what the contract of a line says.
/// @{

/// Opens a file, appends a line in one write, and closes it, under a mutex.
void appendLine(const char* path, const std::string& line);
/// Tests a mask, then passes a line to a function pointer under a mutex.
void callUnderLock(unsigned level, const std::string& line);
/// Writes a line to standard output and flushes it, under a mutex.
void printLine(const std::string& line);
/// @}

/// What the callbacks call.
void receive(const char* line);

/// @name The other logger's destinations, with the same contract
/// @{

class LineSink : public spdlog::sinks::base_sink<std::mutex> {
  protected:
    void sink_it_(const spdlog::details::log_msg& message) final;
    void flush_() final {}
    virtual void take(const spdlog::memory_buf_t& line) = 0;
};

class FileLine final : public LineSink {
  public:
    explicit FileLine(std::string path) : path_(std::move(path)) {}

  private:
    void take(const spdlog::memory_buf_t& line) override;
    std::string path_;
};

class CallbackLine final : public LineSink {
    void take(const spdlog::memory_buf_t& line) override;
};

class StandardOutputLine final : public LineSink {
    void take(const spdlog::memory_buf_t& line) override;
};

/// @}

/// A logger that writes nothing but the message.
[[nodiscard]] std::unique_ptr<spdlog::logger> loggerInto(std::shared_ptr<LineSink> sink);

}  // namespace orvex_bench
