#include "tools/orvexctl/port_watch.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/interrupts.h"
#include "tools/orvexctl/udev.h"

namespace orvex::tools {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// An event may come shortly before what it tells of can be seen.
constexpr auto kSettling = 1s;
constexpr auto kLook = 100ms;

/// udev's news of serial ports.
class PortEvents {
  public:
    PortEvents() {
        monitor_.reset(udev_monitor_new_from_netlink(context_.get(), "udev"));
        if (monitor_ == nullptr ||
            udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), "tty", nullptr) < 0 ||
            udev_monitor_enable_receiving(monitor_.get()) < 0) {
            throw Failure(ExitCode::failure, "udev's events cannot be received",
                          "orvexctl list looks once");
        }
    }

    /// @return whether there was news within @p timeout
    bool await(std::chrono::milliseconds timeout) {
        pollfd events{udev_monitor_get_fd(monitor_.get()), POLLIN, 0};
        if (::poll(&events, 1, static_cast<int>(timeout.count())) <= 0) {
            return false;
        }
        const UdevDevice device(udev_monitor_receive_device(monitor_.get()));
        return device != nullptr;
    }

  private:
    Udev context_{udev_new()};
    UdevMonitor monitor_;
};

bool contains(const std::vector<AttachedLight>& lights, const AttachedLight& wanted) {
    return std::any_of(lights.begin(), lights.end(), [&](const AttachedLight& light) {
        return light.port == wanted.port && light.handle == wanted.handle;
    });
}

}  // namespace

void watchPorts(const std::function<void(const AttachedLight&, bool arrived)>& tell) {
    PortEvents events;
    std::vector<AttachedLight> known;
    Clock::time_point settled = Clock::now() + kSettling;
    while (!isInterrupted()) {
        const std::vector<AttachedLight> present =
            Clock::now() < settled ? attachedLights() : known;
        for (const AttachedLight& light : known) {
            if (!contains(present, light)) {
                tell(light, false);
            }
        }
        for (const AttachedLight& light : present) {
            if (!contains(known, light)) {
                tell(light, true);
            }
        }
        known = present;
        if (events.await(kLook)) {
            settled = Clock::now() + kSettling;
        }
    }
}

}  // namespace orvex::tools
