#include "tests/fuzz/support/devices.h"

#include <memory>
#include <string>

#include "api/device_registry.h"
#include "api/driver_exception.h"
#include "tests/fuzz/support/properties.h"

namespace orvex_fuzz {

namespace {

constexpr unsigned kBaudrate = 9600;

LightDevice& deviceOf(unsigned model) {
    static LightDevice* devices[kModels] = {};
    if (devices[model] == nullptr) {
        auto device = std::make_unique<LightDevice>(model, "/dev/ttyACM" + std::to_string(model));
        devices[model] = device.get();
        gl_devs[device.get()] = std::move(device);
    }
    return *devices[model];
}

const std::string& emptyReplies() {
    static const std::string& lines = *new std::string([] {
        std::string text;
        for (int k = 0; k < 64; ++k) {
            text += "<\n";
        }
        return text;
    }());
    return lines;
}

}  // namespace

UsedDevice::UsedDevice(unsigned model, FakePort& port) : device_(deviceOf(model)), port_(port) {}

UsedDevice::~UsedDevice() {
    port_.setFaults("");
    Script replies(emptyReplies());
    port_.follow(replies);
    closeAll();
    if (device_.isConnected()) {
        releasePort();
    }
    forgetChannels();
    device_.resetDevice();
    holds(device_.getOpenCount() == 0 && !device_.isConnected(), "a device can always be closed");
}

std::uint64_t UsedDevice::handle() const noexcept {
    return reinterpret_cast<std::uintptr_t>(&device_);
}

void UsedDevice::closeAll() {
    // Closed more often than opened, the count has gone below 0; an open brings it back.
    while (device_.getOpenCount() > ~0U / 2) {
        device_.openConnection(kBaudrate);
    }
    while (device_.getOpenCount() != 0) {
        device_.closeConnection(true);
    }
}

/// The list of fitted LEDs outlasts the connection: only a read-out empties it.
void UsedDevice::forgetChannels() {
    OrvexStruct record{};
    device_.getOVStruct(record);
    if (record.iNumChannels == 0) {
        return;
    }
    try {
        device_.initDevice();
        violated("a closed device is not read out");
    } catch (const DriverException&) {  // It has emptied the list before its first request.
    }
}

/// A failing opening drops a link that a failed read-out has left.
void UsedDevice::releasePort() {
    port_.setFaults("o");
    holds(device_.openConnection(kBaudrate) == nullptr, "a port that is not there is not opened");
    port_.setFaults("");
}

}  // namespace orvex_fuzz
