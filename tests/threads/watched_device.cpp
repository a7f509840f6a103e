#include "tests/threads/watched_device.h"

#include <cstdio>
#include <utility>

namespace orvex_threads {

using orvex::sim::Transmission;

namespace {

constexpr std::string_view kNumbered = "sn?";
constexpr std::size_t kComplaints = 10;

orvex::sim::DeviceSetup withoutGroups() {
    orvex::sim::DeviceSetup setup;
    setup.wavelengths = {365, 405, 470, 525};
    return setup;
}

}  // namespace

WatchedDevice::WatchedDevice()
    : conversation_(withoutGroups()), server_(terminal_.master(), *this, [] {}, {}) {
    conversation_.record().keep(false);
}

std::size_t WatchedDevice::numbered() const {
    const std::lock_guard lock(mutex_);
    return numbered_;
}

std::vector<std::string> WatchedDevice::complaints() const {
    const std::lock_guard lock(mutex_);
    return complaints_;
}

std::vector<Transmission> WatchedDevice::receive(std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    unfinished_ += bytes;
    const std::size_t end = unfinished_.find('\r');
    if (end == std::string::npos) {
        return {};
    }
    // Tamar's own requests may end in two carriage returns.
    const std::string request = std::exchange(unfinished_, {});
    if (request.find_first_not_of('\r', end) != std::string::npos) {
        complain("two requests at once: " + request);
    }
    return answer(request);
}

std::vector<Transmission> WatchedDevice::answer(const std::string& request) {
    const bool isNumbered = request.compare(0, kNumbered.size(), kNumbered) == 0 &&
                            request.size() > kNumbered.size() + 1;
    if (!isNumbered) {
        return conversation_.receive(request);
    }
    const std::string value = request.substr(kNumbered.size());
    note(value);
    return {Transmission{value}};
}

void WatchedDevice::note(const std::string& value) {
    int thread = 0;
    int number = 0;
    int length = 0;
    const int read = std::sscanf(value.c_str(), "%d.%d\r%n", &thread, &number, &length);
    if (read != 2 || static_cast<std::size_t>(length) != value.size()) {
        return complain("not a whole request: " + value);
    }
    if (number <= last_[thread]) {
        complain("out of order: " + value);
    }
    last_[thread] = number;
    ++numbered_;
}

void WatchedDevice::complain(const std::string& what) {
    if (complaints_.size() < kComplaints) {
        complaints_.push_back(what);
    }
}

}  // namespace orvex_threads
