#include "bench/log_floors.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spdlog/details/file_helper.h>
#include <spdlog/pattern_formatter.h>
#include <stdlib.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace orvex_bench {

namespace {

std::mutex mutex;
std::atomic<std::uint32_t> mask{0x7F};
std::atomic<int> method{2};
void (*receiver)(const char*) = receive;

void require(bool condition, const char* what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

}  // namespace

TemporaryFile::TemporaryFile() : path_("/tmp/orvex-bench-XXXXXX") {
    const int descriptor = ::mkstemp(path_.data());
    require(descriptor >= 0, "mkstemp");
    ::close(descriptor);
}

TemporaryFile::~TemporaryFile() {
    ::unlink(path_.c_str());
}

StandardOutputInto::StandardOutputInto(const char* path) {
    std::fflush(stdout);
    before_ = ::dup(STDOUT_FILENO);
    const int file = ::open(path, O_WRONLY | O_APPEND | O_CLOEXEC);
    require(before_ >= 0 && file >= 0 && ::dup2(file, STDOUT_FILENO) >= 0, "dup2");
    ::close(file);
}

StandardOutputInto::~StandardOutputInto() {
    std::fflush(stdout);
    ::dup2(before_, STDOUT_FILENO);
    ::close(before_);
}

void appendLine(const char* path, const std::string& line) {
    const std::lock_guard<std::mutex> guard(mutex);
    const int file = ::open(path, O_WRONLY | O_CREAT | O_APPEND, 0666);
    char newline = '\n';
    const std::array<iovec, 2> pieces = {
        {{const_cast<char*>(line.data()), line.size()}, {&newline, 1}}};
    require(::writev(file, pieces.data(), 2) > 0, "writev");
    ::close(file);
}

void callUnderLock(unsigned level, const std::string& line) {
    if ((mask & level) == 0 || method != 2) {
        return;
    }
    const std::lock_guard<std::mutex> guard(mutex);
    if (receiver != nullptr) {
        receiver(line.c_str());
    }
}

void printLine(const std::string& line) {
    const std::lock_guard<std::mutex> guard(mutex);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::putc('\n', stdout);
    std::fflush(stdout);
}

void receive(const char* line) {
    benchmark::DoNotOptimize(line);
}

void LineSink::sink_it_(const spdlog::details::log_msg& message) {
    spdlog::memory_buf_t line;
    formatter_->format(message, line);
    take(line);
}

void FileLine::take(const spdlog::memory_buf_t& line) {
    spdlog::details::file_helper file;
    file.open(path_);
    file.write(line);
    file.flush();
    file.close();
}

void CallbackLine::take(const spdlog::memory_buf_t& line) {
    receiver(std::string(line.data(), line.size()).c_str());
}

void StandardOutputLine::take(const spdlog::memory_buf_t& line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
}

std::unique_ptr<spdlog::logger> loggerInto(std::shared_ptr<LineSink> sink) {
    auto logger = std::make_unique<spdlog::logger>("bench", std::move(sink));
    logger->set_formatter(std::make_unique<spdlog::pattern_formatter>("%v"));
    return logger;
}

}  // namespace orvex_bench
