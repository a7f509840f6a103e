// A device's making and end, and what it tells of itself.
#include "device/light_device.h"

#include <utility>

#include "api/driver_exception.h"
#include "log/log.h"

LightDevice::LightDevice(OrvexType type, std::string port) : type_(type) {
    if (port.find("tty") == std::string::npos) {
        // The text names openConnection; programs know it so.
        logerr("LightDevice::openConnection: wrong pattern found in parameter sz_port");
        orvex::raise(ORVEX_ERR_INVALID_ARG);
    }
    port_ = std::move(port);
    state_.iSize = sizeof(OrvexStruct);
    commands_ = orvex::commandsOf(type_);
    log(LOG_BIT_INFO,
        "LightDevice::LightDevice: new LightDevice <" + std::to_string(type_) + "> @ " + port_);
}

LightDevice::~LightDevice() {
    const Lock lock(mutex_);
    if (link_ != nullptr) {
        link_->disconnect();
    }
}

void LightDevice::resetDevice() {
    state_ = OrvexStruct{};
    state_.iSize = sizeof(OrvexStruct);
    switched_on_list_.clear();
    all_channels_list_.clear();
    internal_on_ = false;
    switch_enabled_ = false;
    group_selection_changed_ = false;
}

bool LightDevice::isConnected() const {
    const Lock lock(mutex_);
    return link_ != nullptr && link_->isConnected();
}

void* LightDevice::hDev() noexcept {
    return this;
}

std::uint32_t LightDevice::getOpenCount() const noexcept {
    return connection_count_;
}

OrvexType LightDevice::getType() const noexcept {
    return type_;
}

std::string LightDevice::getComPort() const {
    return port_;
}

bool LightDevice::isLed() const noexcept {
    return (state_.iCapabilities & ORVEX_CAP_LED) != 0;
}

bool LightDevice::knows(const char* name) const {
    return commands_.count(name) != 0;
}
