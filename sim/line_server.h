/// @file
/// A thread that answers on a terminal line.
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <optional>
#include <thread>

#include "sim/conversation.h"
#include "sim/pseudo_terminal.h"

namespace orvex::sim {

/// Moves bytes between a line and a Talker in a thread of its own, until it is destroyed or
/// the line ends. The thread sleeps while there is nothing to move.
///
/// The line is any terminal in raw mode that does not block: a pseudo-terminal's master, or a real
/// port.
class LineServer {
  public:
    /// @param line stays the caller's and open until the server is gone or @p lineEnds was called
    /// @param talker outlives the server; it is called in the server's thread
    /// @param lineEnds called in the server's thread, as its last act, when the line has ended or
    ///        the device hangs up; it may close the line
    /// @throws std::system_error
    LineServer(int line, Talker& talker, std::function<void()> lineEnds, Observer observer = {});
    LineServer(const LineServer&) = delete;
    LineServer& operator=(const LineServer&) = delete;
    ~LineServer();

  private:
    void run();
    [[nodiscard]] bool serveOnce();
    [[nodiscard]] short awaitLine();
    [[nodiscard]] bool receive();
    void enqueue(std::vector<Transmission> transmissions);
    void scheduleFront();
    [[nodiscard]] bool sendDue();
    [[nodiscard]] bool sendFront();

    const int line_;
    Talker& talker_;
    const std::function<void()> lineEnds_;
    const Observer observer_;
    const Descriptor wakeUp_;
    std::atomic<bool> stopping_{false};
    std::deque<Transmission> outgoing_;
    std::optional<Clock::time_point> frontDue_;
    std::thread thread_;
};

}  // namespace orvex::sim
