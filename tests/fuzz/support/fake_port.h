/// @file
/// A serial port whose device answers as a script says, without a terminal.
#pragma once

#include <termios.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/support/script.h"

namespace orvex_fuzz {

/// One request and what came back.
struct Exchange {
    /// The first thing that went wrong.
    enum class Fault { None, Purge, Write, Read, Silence };

    std::string request;
    std::string reply;  ///< The bytes that were read.
    Fault fault = Fault::None;
};

/// Some of a port's exchanges, in order.
class Exchanges {
  public:
    Exchanges(const std::vector<Exchange>& all, std::size_t from) noexcept
        : begin_(all.data() + from), end_(all.data() + all.size()) {}

    [[nodiscard]] const Exchange* begin() const noexcept { return begin_; }
    [[nodiscard]] const Exchange* end() const noexcept { return end_; }
    [[nodiscard]] std::size_t size() const noexcept {
        return static_cast<std::size_t>(end_ - begin_);
    }
    [[nodiscard]] bool empty() const noexcept { return begin_ == end_; }
    [[nodiscard]] const Exchange& back() const noexcept { return *(end_ - 1); }
    const Exchange& operator[](std::size_t k) const noexcept { return begin_[k]; }

  private:
    const Exchange* begin_;
    const Exchange* end_;
};

/// The only port of the process while it exists: the library's system calls come to it. Every
/// path opens it, and pauses take no time. It holds the library to its use: no call on a port that
/// is closed, raw settings while it is open, an exchange begun by a purge.
class FakePort {
  public:
    /// What the port itself refuses, each a letter of a script's "!" line.
    struct Faults {
        bool open = false;           ///< o
        bool getAttributes = false;  ///< g
        bool setAttributes = false;  ///< s
        bool close = false;          ///< c
        bool duplicate = false;      ///< d: no descriptor above 0 is to be had.
        bool isLowest = false;       ///< z: the port is opened on descriptor 0.
        bool oddSpeeds = false;      ///< v: input at another speed than output.
    };

    explicit FakePort(Script& script);
    FakePort(const FakePort&) = delete;
    FakePort& operator=(const FakePort&) = delete;
    ~FakePort();

    /// The script whose replies answer from now on.
    void follow(Script& script) noexcept { script_ = &script; }
    void setFaults(std::string_view letters) noexcept;
    [[nodiscard]] const Faults& faults() const noexcept { return faults_; }
    [[nodiscard]] bool isOpen() const noexcept { return isOpen_; }
    /// Whether the settings are those that the port had before it was opened.
    [[nodiscard]] bool isRestored() const noexcept;
    /// How many bytes the device will answer to the next request, its carriage return included.
    [[nodiscard]] std::size_t comingReplySize() const noexcept;
    /// The exchanges from a number on; until the next one begins.
    [[nodiscard]] Exchanges exchangesFrom(std::size_t number) const noexcept {
        return {exchanges, number};
    }
    /// The pauses so far, in milliseconds.
    [[nodiscard]] long paused() const noexcept { return paused_; }

    std::vector<Exchange> exchanges;

    /// @name The system calls
    /// @{
    int open();
    int duplicate();
    int close(int descriptor);
    ssize_t read(int descriptor, char* buffer, std::size_t size);
    ssize_t write(int descriptor, const char* data, std::size_t size);
    int purge(int descriptor);
    int getAttributes(int descriptor, termios& settings);
    int setAttributes(int descriptor, const termios& settings);
    void pause(long milliseconds) noexcept { paused_ += milliseconds; }
    /// @}

  private:
    void requireOpen(int descriptor) const;
    void beginReply();
    int refuse(Exchange::Fault fault);

    Script* script_;
    Faults faults_;
    Reply reply_;
    termios settings_{};
    termios settingsBefore_{};
    bool isOpen_ = false;
    int descriptor_ = -1;
    bool isPurged_ = false;
    int silence_ = 0;
    long paused_ = 0;
};

}  // namespace orvex_fuzz
