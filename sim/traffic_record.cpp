#include "sim/traffic_record.h"

#include <utility>

namespace orvex::sim {

void TrafficRecord::addBytes(std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    if (kept_) {
        received_ += bytes;
    }
}

void TrafficRecord::addRequest(std::string request) {
    {
        const std::lock_guard lock(mutex_);
        if (!kept_) {
            return;
        }
        requests_.push_back(std::move(request));
    }
    grown_.notify_all();
}

std::string TrafficRecord::received() const {
    const std::lock_guard lock(mutex_);
    return received_;
}

std::vector<std::string> TrafficRecord::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

void TrafficRecord::clear() {
    const std::lock_guard lock(mutex_);
    received_.clear();
    requests_.clear();
}

void TrafficRecord::keep(bool on) {
    const std::lock_guard lock(mutex_);
    kept_ = on;
}

bool TrafficRecord::waitForRequests(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, timeout, [this, count] { return requests_.size() >= count; });
}

}  // namespace orvex::sim
