/// @file
/// What the library did on a port.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orvex_soak {

/// The library did something else than it must.
class Mismatch : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One thing that happened on a port.
struct Event {
    enum class Kind {
        opened,
        openRefused,
        settingsRefused,
        purged,
        purgeRefused,
        sent,
        sendRefused,
        sendCut,
        closed,
        closedUnrestored,  ///< The port's settings were not put back.
    };
    Kind kind;
    std::string request = {};  ///< sent, sendRefused, sendCut: the bytes as written.
    std::string reply = {};    ///< sent: all that can be read until the next purge.
};

[[nodiscard]] std::string textOf(const Event& event);

/// The events of one call on one port, to be accounted for one by one.
class Transcript {
  public:
    explicit Transcript(std::vector<Event> events) : events_(std::move(events)) {}

    /// The next event.
    /// @throws Mismatch when there is none  @param awaited what the rules ask for, for the message
    const Event& take(const std::string& awaited);
    /// Whether the next event is of this kind.
    [[nodiscard]] bool nextIs(Event::Kind kind) const;
    /// The next event, which must be of this kind. @throws Mismatch
    void expect(Event::Kind kind);
    /// @throws Mismatch when events are left
    void expectEnd() const;

  private:
    std::vector<Event> events_;
    std::size_t next_ = 0;
};

}  // namespace orvex_soak
