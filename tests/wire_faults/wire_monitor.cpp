#include "tests/wire_faults/wire_monitor.h"

namespace orvex_test {

orvex::sim::Observer WireMonitor::observer() {
    return
        [this](orvex::sim::Direction direction, std::string_view bytes) { see(direction, bytes); };
}

std::size_t WireMonitor::count() const {
    const std::lock_guard lock(mutex_);
    return exchanges_.size();
}

std::vector<Exchange> WireMonitor::since(std::size_t first) const {
    const std::lock_guard lock(mutex_);
    return {exchanges_.begin() + static_cast<std::ptrdiff_t>(first), exchanges_.end()};
}

void WireMonitor::see(orvex::sim::Direction direction, std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    const auto now = Clock::now();
    if (direction == orvex::sim::Direction::toClient) {
        exchanges_.back().reply += bytes;
        exchanges_.back().lastSent = now;
        return;
    }
    for (const char byte : bytes) {
        if (byte == '\r') {
            exchanges_.push_back({std::move(partial_), "", now, now});
            partial_.clear();
        } else {
            partial_ += byte;
        }
    }
}

}  // namespace orvex_test
