/// @file
/// A fuzz input as a text of steps and a device's replies.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvex_fuzz {

/// Lines; one that begins with "<" is a device's reply, any other a step of the harness. The
/// replies behind a step are those to the requests that the step sends.
class Script {
  public:
    explicit Script(std::string_view text) noexcept : rest_(text) {}
    Script(const std::uint8_t* data, std::size_t size) noexcept
        : rest_(reinterpret_cast<const char*>(data), size) {}

    /// The next step, none at the end; replies before it go unused.
    std::optional<std::string_view> nextStep() noexcept;
    /// The next line, without its "<", if it is a reply.
    std::optional<std::string_view> nextReply() noexcept;

  private:
    std::string_view takeLine() noexcept;

    std::string_view rest_;
};

/// What a device does when it is read from.
struct Answer {
    enum class Kind { Byte, TimeOut, Failure };
    Kind kind;
    char byte;
};

/// A reply line in the course of being sent. A carriage return follows its text, then silence.
///
/// Behind a backslash: r, n, 0, \ are characters; t is a time-out, e a read error; * repeats the
/// character behind it 500 times; - ends the reply without a carriage return. As the first
/// character p, w and s tell that the request's purge fails, its write fails or is short.
class Reply {
  public:
    Reply() noexcept = default;
    explicit Reply(std::string_view line) noexcept;

    [[nodiscard]] bool failsPurge() const noexcept { return fault_ == 'p'; }
    [[nodiscard]] bool failsWrite() const noexcept { return fault_ == 'w'; }
    [[nodiscard]] bool cutsWrite() const noexcept { return fault_ == 's'; }
    Answer next() noexcept;

  private:
    Answer afterText() noexcept;
    Answer afterBackslash() noexcept;
    [[nodiscard]] char take() noexcept;

    std::string_view rest_;
    char fault_ = 0;
    char repeated_ = 0;
    int repetitions_ = 0;
    bool isTerminated_ = true;
};

}  // namespace orvex_fuzz
