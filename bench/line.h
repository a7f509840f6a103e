/// @file
/// A serial port whose far end answers within the write, in the writing thread.
///
/// A program that compiles line.cpp defines read, write, ioctl and nanosleep: the library's calls
/// come there. A reply waits at the port before the first read, so that no other thread has a part
/// in an exchange.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "sim/pseudo_terminal.h"

namespace orvex_bench {

/// How often the calls were made on lines, by whomever.
struct Calls {
    std::size_t read = 0;
    std::size_t write = 0;
    std::size_t ioctl = 0;
    std::size_t pauses = 0;
    double pausedFor = 0;  ///< ms

    [[nodiscard]] std::size_t onPort() const { return read + write + ioctl; }
};

/// Of the calling thread, since its start.
Calls& calls() noexcept;

/// One port. Its calls are made in one thread at a time.
class Line {
  public:
    using Answer = std::function<std::string(std::string_view request)>;

    Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;
    ~Line();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// The same terminal, opened by this object.
    [[nodiscard]] int descriptor() const noexcept { return terminal_.get(); }

    /// Answers everything with the same bytes.
    void replyWith(const std::string& bytes);
    void answerWith(Answer answer);
    /// Does without the kernel: calls on the port are answered from memory.
    void keepInMemory(bool inMemory) noexcept { inMemory_ = inMemory; }

    /// The calls as they arrive; false: the kernel is to be asked.
    bool read(void* buffer, std::size_t size, long& result) noexcept;
    bool write(std::string_view bytes, long& result);
    [[nodiscard]] bool isInMemory() const noexcept { return inMemory_; }
    void deliver(std::size_t written);

  private:
    void prepare(std::string_view request);

    const orvex::sim::TemporaryDirectory directory_;
    const std::string path_;
    const orvex::sim::Descriptor master_;
    orvex::sim::Descriptor terminal_;
    Answer answer_;
    std::string reply_;
    std::size_t position_ = 0;
    bool inMemory_ = false;
};

/// Nobody sleeps while such an object lives; the pauses are counted all the same.
class SkippedPauses {
  public:
    SkippedPauses();
    SkippedPauses(const SkippedPauses&) = delete;
    SkippedPauses& operator=(const SkippedPauses&) = delete;
    ~SkippedPauses();
};

}  // namespace orvex_bench
