// Switching the light: channels, lamp and shutter.
#include <chrono>
#include <thread>

#include "api/driver_exception.h"
#include "device/light_device.h"
#include "device/reply.h"
#include "log/log.h"

using namespace std::chrono_literals;

namespace {

constexpr auto kGroupPause = 1800ms;
constexpr auto kGroupPollPause = 100ms;
constexpr auto kSwitchPause = 10ms;

/// Whether a unit status tells of every channel it names what the cached state says.
bool hasSettled(const std::string& unitStatus, const OrvexStruct& state) {
    std::int32_t k = 0;
    for (const std::int32_t reported : orvex::parseNumbers(unitStatus)) {
        if (k == state.iNumChannels) {
            break;
        }
        if (reported != (state.aChannels[k].iState & 1)) {
            return false;
        }
        ++k;
    }
    return true;
}

}  // namespace

void LightDevice::switchOrvex(bool enable, bool on) {
    switch_enabled_ = enable;
    if (!enable) {
        return;
    }
    if (!on) {
        switchInternalOff();
    } else if (!switched_on_list_.empty()) {
        switchInternalOn(switched_on_list_);
    }
    internal_on_ = on;
}

void LightDevice::switchInternalOn(const std::string& channels) {
    std::string reply;
    if (isLed()) {
        executeCommand("TurnLedOn", reply, channels);
        if (group_selection_changed_) {
            awaitGroup();
        }
    } else {
        executeCommand("OpenShutter", reply, "");
    }
    log(LOG_BIT_DETAIL, "switchInternalOn: succeed.");
}

void LightDevice::awaitGroup() {
    std::this_thread::sleep_for(kGroupPause);
    do {
        std::this_thread::sleep_for(kGroupPollPause);
    } while (!hasSettled(query("GetUnitStatus"), state_));
    log(LOG_BIT_INFO, "LightDevice::switchInternalOn done!");
    group_selection_changed_ = false;
}

void LightDevice::switchInternalOff() {
    std::string reply;
    if (isLed()) {
        executeCommand("TurnLedOff", reply, all_channels_list_);
        log(LOG_BIT_DETAIL, "switchInternalOff: succeed.");
    } else {
        executeCommand("CloseShutter", reply, "");
    }
}

bool LightDevice::getLampState() const noexcept {
    return internal_on_;
}

void LightDevice::setLampState(bool on) {
    if (!knows("TurnLampOn") || !knows("TurnLampOff")) {
        orvex::raise("Command <TurnLampOn/Off> is not supported for type " + std::to_string(type_),
                     ORVEX_ERR_NOT_SUPPORTED);
    }
    query(on ? "TurnLampOn" : "TurnLampOff");
    std::this_thread::sleep_for(kSwitchPause);
}

void LightDevice::setShutterState(bool open) {
    if (!knows("OpenShutter") || !knows("CloseShutter")) {
        orvex::raise(
            "Command <Open/CloseShutter> is not supported for type " + std::to_string(type_),
            ORVEX_ERR_NOT_SUPPORTED);
    }
    query(open ? "OpenShutter" : "CloseShutter");
    std::this_thread::sleep_for(kSwitchPause);
}
