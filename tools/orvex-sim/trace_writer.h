/// @file
/// Writing what devices and their clients say to each other.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "include/qtr_orvex.h"
#include "sim/conversation.h"
#include "sim/pseudo_terminal.h"

namespace orvex::tools {

/// A trace file; each line is written as soon as it is complete. For any thread.
///
/// A line ends with its carriage return, or where the other side begins to speak.
class TraceWriter {
  public:
    /// Begins the file.
    /// @throws Failure when it cannot be written
    explicit TraceWriter(std::string path);
    TraceWriter(const TraceWriter&) = delete;
    TraceWriter& operator=(const TraceWriter&) = delete;
    /// Writes what is incomplete.
    ~TraceWriter();

    /// Says what a device is. @param device from 1
    void introduce(unsigned device, OrvexType model, const std::string& place);
    /// Takes bytes down.
    void add(unsigned device, sim::Direction direction, std::string_view bytes);
    void addPlugging(unsigned device, bool pluggedIn);

    /// Writes what is incomplete.
    /// @return whether everything could be written; people have been told otherwise
    bool finish();

  private:
    using Clock = std::chrono::steady_clock;
    struct Line {
        sim::Direction direction = sim::Direction::toDevice;
        std::string bytes;
        Clock::time_point begun;
    };

    void addByte(unsigned device, sim::Direction direction, char byte);
    void finishLine(unsigned device, Line& line);
    void writeEvent(unsigned device, Clock::time_point when, const std::string& text);
    void write(const std::string& text);

    const std::string path_;
    const sim::Descriptor file_;
    const Clock::time_point begun_ = Clock::now();
    std::mutex mutex_;
    std::map<unsigned, Line> lines_;
    int error_ = 0;
};

/// The exit code of a program that would end with @p code, its trace considered.
[[nodiscard]] int codeWithTrace(int code, TraceWriter* trace);

/// What a device tells a trace. @param trace null: nothing is to be written
[[nodiscard]] sim::Observer observerFor(TraceWriter* trace, unsigned device);

}  // namespace orvex::tools
