#include "tools/orvex-sim/stage.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <utility>

namespace orvex::tools {

namespace {

using TimePoint = std::optional<sim::Clock::time_point>;

TimePoint earlier(const TimePoint& a, const TimePoint& b) {
    return a && b ? std::min(*a, *b) : (a ? a : b);
}

int timeOut(const TimePoint& when) {
    if (!when) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(*when - sim::Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 60'000));
}

}  // namespace

Stage::Stage(const Signals& signals, const Bell& bell, Posts posts, std::vector<Event> events)
    : signals_(signals), bell_(bell), posts_(std::move(posts)), timeline_(std::move(events)) {}

Signal Stage::next() {
    for (;;) {
        if (const auto signal = signals_.take()) {
            return *signal;
        }
        sleepUntil(attend());
    }
}

TimePoint Stage::attend() {
    bell_.hear();
    TimePoint next = timeline_.proceed(posts_);
    for (const auto& post : posts_) {
        next = earlier(next, post->attend());
    }
    return next;
}

void Stage::sleepUntil(TimePoint when) const {
    std::array<pollfd, 2> sources{};
    sources[0] = {signals_.descriptor(), POLLIN, 0};
    sources[1] = {bell_.descriptor(), POLLIN, 0};
    ::poll(sources.data(), sources.size(), timeOut(when));
}

}  // namespace orvex::tools
