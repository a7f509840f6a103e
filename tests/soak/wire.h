/// @file
/// Serial ports without terminals.
///
/// A program that compiles system_calls.cpp defines the system calls that the library makes on its
/// ports, so that they come here: nothing waits, nothing depends on time, and every byte is seen.
#pragma once

#include <termios.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/conversation.h"
#include "tests/soak/transcript.h"

namespace orvex_soak {

/// A failing system call: the n-th call that may fail so, counted from when it was set.
struct CallFailure {
    Event::Kind kind = Event::Kind::openRefused;
    unsigned nth = 1;
};

/// What happens, and is to happen, at one path; it stays while devices come and go there.
struct Track {
    std::vector<Event> events;
    std::optional<CallFailure> failure;
    bool nextReplyIsLate = false;    ///< It comes after the library has given it up.
    std::size_t requestsInStep = 0;  ///< Since beginStep().
    std::size_t requests = 0;        ///< In all.

    void beginStep();
    /// Whether a call of this kind fails now.
    [[nodiscard]] bool fails(Event::Kind kind);
};

/// A port with a device behind it. Its calls are the system's: -1 with errno set on failure.
class Port {
  public:
    Port(Track& track, const orvex::sim::DeviceSetup& setup);

    [[nodiscard]] orvex::sim::Conversation& device() noexcept { return device_; }
    /// The port is pulled out: who has it open finds it ended.
    void end() noexcept { ended_ = true; }
    [[nodiscard]] bool hasEnded() const noexcept { return ended_; }

    void opened();
    void close();
    long read(void* buffer, std::size_t size);
    long write(std::string_view bytes);
    int flush();
    int getSettings(termios& settings) const;
    int setSettings(const termios& settings);

  private:
    [[nodiscard]] std::string answerTo(std::string_view bytes);

    Track& track_;
    orvex::sim::Conversation device_;
    bool ended_ = false;
    termios settings_{};
    std::string input_;
    std::string late_;
    int emptyReads_ = 0;
};

/// All ports, while it exists. One at a time, for one thread.
class Wire {
  public:
    Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;
    ~Wire();

    Port& plug(const std::string& path, const orvex::sim::DeviceSetup& setup);
    /// Takes a port away; who has it open keeps the ended port.
    void unplug(const std::string& path);
    [[nodiscard]] const std::map<std::string, std::shared_ptr<Port>>& plugged() const noexcept {
        return plugged_;
    }
    [[nodiscard]] std::map<std::string, Track>& tracks() noexcept { return tracks_; }
    [[nodiscard]] std::size_t openCount() const noexcept { return open_.size(); }

    /// @name For the system calls
    /// @{
    /// @return a descriptor, or -1 with errno set
    int open(const std::string& path);
    /// @return null when the descriptor is none of the wire's
    [[nodiscard]] Port* at(int descriptor);
    /// The descriptor is the wire's no more.
    void closed(int descriptor);
    /// @}

  private:
    std::map<std::string, Track> tracks_;
    std::map<std::string, std::shared_ptr<Port>> plugged_;
    std::map<int, std::shared_ptr<Port>> open_;
};

/// The wire that exists, or null.
[[nodiscard]] Wire* currentWire() noexcept;
/// The system's own call, for a descriptor that nothing is done with.
int openNothing();

}  // namespace orvex_soak
