/// @file
/// Faults that a simulated device shows on request.
#pragma once

#include <chrono>
#include <cstddef>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::sim {

/// What happens to a reply. Fields may be combined: `Fault f = scripted("1\r"); f.delay = 50ms;`
struct Fault {
    std::chrono::milliseconds delay{0};                  ///< Before the first byte.
    std::optional<std::chrono::milliseconds> bytePause;  ///< Given: byte by byte, so far apart.
    /// Given: sent instead of the device's own reply, as it stands. The device then does not carry
    /// out the request.
    std::optional<std::string> reply;
    std::size_t bytesOff = 0;        ///< Taken off the reply's end.
    bool silent = false;             ///< The request is carried out and nothing is sent.
    bool endsAtNextRequest = false;  ///< What is not yet sent by then is dropped.
    bool hangUp = false;             ///< The port ends; nothing is sent.
};

/// No reply.
[[nodiscard]] Fault silence();
/// A late reply.
[[nodiscard]] Fault delayed(std::chrono::milliseconds delay);
/// A reply byte by byte.
[[nodiscard]] Fault slowly(std::chrono::milliseconds bytePause);
/// The device's error reply, "e" and a carriage return.
[[nodiscard]] Fault errorReply();
/// These bytes and nothing else; a carriage return only if they hold one.
[[nodiscard]] Fault scripted(std::string bytes);
/// A reply without its last byte, the carriage return.
[[nodiscard]] Fault unterminated();
/// @p limit bytes without a carriage return, or as many as fit until the next request. The default
/// goes out in one piece, so that a client's purge removes what it does not want.
[[nodiscard]] Fault endless(std::size_t limit = 2000, char byte = '5');
/// The port ends, as if the device were pulled out.
[[nodiscard]] Fault hangUp();

/// Which requests a fault befalls.
class Trigger {
  public:
    /// Only the n-th (from 1) of the requests that this trigger fits, counted from when it was set.
    [[nodiscard]] Trigger nth(unsigned n) const;
    /// The n-th of them and all later ones.
    [[nodiscard]] Trigger from(unsigned n) const;

  private:
    friend Trigger onCommand(std::string name);
    friend Trigger onRequest(std::string text);
    friend Trigger onAny();
    friend class FaultScript;

    enum class Kind { command, request, any };
    Trigger(Kind kind, std::string text) : kind_(kind), text_(std::move(text)) {}
    [[nodiscard]] bool fits(std::string_view request, const std::vector<std::string>& names) const;

    Kind kind_;
    std::string text_;
    unsigned first_ = 1;
    unsigned last_ = std::numeric_limits<unsigned>::max();
};

/// Every request of this command name; names that share a request share the fault.
[[nodiscard]] Trigger onCommand(std::string name);
/// Every request of exactly this text, with or without its carriage return; "A" is the presence
/// byte.
[[nodiscard]] Trigger onRequest(std::string text);
/// Every request, the presence byte too.
[[nodiscard]] Trigger onAny();

/// The faults of one device. Of several that fit a request the one added last counts. For any
/// thread.
class FaultScript {
  public:
    void add(Trigger trigger, Fault fault);
    void clear();

    /// Counts a request for all faults it fits and tells which befalls it.
    /// @param request without its carriage return  @param names the command names it may stand for
    [[nodiscard]] std::optional<Fault> onArrival(std::string_view request,
                                                 const std::vector<std::string>& names);

  private:
    struct Rule {
        Trigger trigger;
        Fault fault;
        unsigned seen = 0;
    };

    std::mutex mutex_;
    std::vector<Rule> rules_;
};

}  // namespace orvex::sim
