#include "sim/simulated_device.h"

#include <utility>

namespace orvex::sim {

SimulatedDevice::SimulatedDevice(const DeviceSetup& setup, Observer observer)
    : SimulatedDevice(setup, std::move(observer), {}) {}

SimulatedDevice::SimulatedDevice(const DeviceSetup& setup, Observer observer,
                                 std::function<void()> hangsUp)
    : model_(setup.model),
      observer_(std::move(observer)),
      hangsUp_(std::move(hangsUp)),
      conversation_(setup),
      path_(directory_.path() + "/ttyACM0") {
    plugIn();
}

SimulatedDevice::~SimulatedDevice() {
    hangUp();
}

std::string SimulatedDevice::slavePath() const {
    const std::lock_guard lock(mutex_);
    return terminal_ ? terminal_->slavePath() : std::string();
}

void SimulatedDevice::hangUp() {
    const std::lock_guard plugging(plugging_);
    server_.reset();
    endPort();
}

void SimulatedDevice::plugIn() {
    const std::lock_guard plugging(plugging_);
    if (isPluggedIn()) {
        return;
    }
    server_.reset();
    conversation_.forgetPartialRequest();
    auto terminal = std::make_unique<PseudoTerminal>(path_);
    const int line = terminal->master();
    {
        const std::lock_guard lock(mutex_);
        terminal_ = std::move(terminal);
    }
    server_ = std::make_unique<LineServer>(
        line, conversation_, [this] { hangUpByItself(); }, observer_);
}

bool SimulatedDevice::isPluggedIn() const {
    const std::lock_guard lock(mutex_);
    return terminal_ != nullptr;
}

void SimulatedDevice::addFault(const Trigger& trigger, const Fault& fault) {
    conversation_.faults().add(trigger, fault);
}

void SimulatedDevice::replyWith(const std::string& command, const std::string& bytes) {
    addFault(onCommand(command), scripted(bytes));
}

/// Also runs in the server's thread: it must not wait for the server.
void SimulatedDevice::endPort() {
    const std::lock_guard lock(mutex_);
    terminal_.reset();
}

void SimulatedDevice::hangUpByItself() {
    endPort();
    if (hangsUp_) {
        hangsUp_();
    }
}

}  // namespace orvex::sim
