/// @file
/// What happens between the library and one port, in the order in which it happens.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvex_test {

/// One thing that happened.
struct Event {
    enum class Kind {
        Step,      ///< What is called next.
        Result,    ///< What came of it.
        Port,      ///< Opened, purged, closed; a pause.
        Sent,      ///< Bytes of one write.
        Received,  ///< Bytes up to a carriage return, or up to the next other event.
        Log
    };

    Kind kind;
    std::string text;

    bool operator==(const Event& other) const { return kind == other.kind && text == other.text; }
};

/// Takes down the system calls that this thread makes on a port, and whatever is added to it.
///
/// A program with tape.cpp defines these system calls itself, so that the library's calls come to
/// it. While a tape exists, pauses of its thread take no time. One tape at a time in a thread.
class Tape {
  public:
    /// @param port the path by which the port is opened
    explicit Tape(std::string port);
    Tape(const Tape&) = delete;
    Tape& operator=(const Tape&) = delete;
    ~Tape();

    /// The tape of this thread, or null.
    [[nodiscard]] static Tape* current() noexcept;

    /// Keeps what happens from now on.
    void start() { running_ = true; }
    /// While on, reading finds nothing, without the wait for the port's time-out.
    void expectSilence(bool on) { silent_ = on; }
    [[nodiscard]] bool expectsSilence() const { return silent_; }
    void add(Event::Kind kind, std::string_view text);
    [[nodiscard]] const std::vector<Event>& events() const { return events_; }

    /// @name For the system calls
    /// @{
    void onOpen(std::string_view path, int descriptor);
    void onClose();
    [[nodiscard]] bool isPort(int descriptor) const;
    /// @}

  private:
    const std::string port_;
    int descriptor_ = -1;
    bool running_ = false;
    bool silent_ = false;
    std::vector<Event> events_;
};

}  // namespace orvex_test
