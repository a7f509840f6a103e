#include "tools/orvex-sim/timeline.h"

#include <algorithm>
#include <utility>

namespace orvex::tools {

namespace {

void happen(const Event& event, Post& post) {
    switch (event.kind) {
        case Event::Kind::plug:
            post.plug();
            break;
        case Event::Kind::unplug:
            post.unplug();
            break;
        case Event::Kind::fault:
            post.faults().add(*event.trigger, event.fault);
            break;
        case Event::Kind::clearFaults:
            post.faults().clear();
            break;
    }
}

}  // namespace

Timeline::Timeline(std::vector<Event> events) : events_(std::move(events)) {
    std::stable_sort(events_.begin(), events_.end(),
                     [](const Event& a, const Event& b) { return a.at < b.at; });
}

void Timeline::begin(const Posts& posts) {
    begun_ = sim::Clock::now();
    proceed(posts);
}

std::optional<sim::Clock::time_point> Timeline::proceed(const Posts& posts) {
    for (; next_ < events_.size(); ++next_) {
        const Event& event = events_[next_];
        if (begun_ + event.at > sim::Clock::now()) {
            return begun_ + event.at;
        }
        for (const std::size_t device : event.devices) {
            happen(event, *posts[device]);
        }
    }
    return std::nullopt;
}

}  // namespace orvex::tools
