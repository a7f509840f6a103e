#include "tests/support/attached_devices.h"

#include <algorithm>
#include <array>

namespace orvex_test {

AttachedDevices::AttachedDevices() = default;

AttachedDevices::~AttachedDevices() {
    api().SetLogBits(0);
    while (!ports_.empty()) {
        unplug(std::string(ports_.back()));
    }
    scan();
}

AttachedDevices::Device& AttachedDevices::attach(OrvexType model) {
    Setup setup;
    setup.model = model;
    return attach(setup);
}

AttachedDevices::Device& AttachedDevices::attach(const Setup& setup) {
    devices_.push_back(std::make_unique<Device>(setup));
    ports_.push_back(testbed.plug(*devices_.back()));
    return *devices_.back();
}

AttachedDevices::Device& AttachedDevices::attach(OrvexType model, const Identity& identity) {
    Setup setup;
    setup.model = model;
    devices_.push_back(std::make_unique<Device>(setup));
    ports_.push_back(testbed.plug(*devices_.back(), identity));
    return *devices_.back();
}

std::string AttachedDevices::attachDead(const Identity& identity) {
    ports_.push_back(testbed.plug(identity));
    return ports_.back();
}

void AttachedDevices::unplug(const std::string& port) {
    testbed.unplug(port);
    ports_.erase(std::find(ports_.begin(), ports_.end(), port));
}

std::vector<std::uint64_t> AttachedDevices::scan(std::size_t slots) {
    std::vector<std::uint64_t> handles(slots);
    std::uint32_t found = 0;
    EXPECT_EQ(api().ScanDevices(handles.data(), static_cast<std::uint32_t>(slots), &found), 0u);
    handles.erase(std::remove(handles.begin(), handles.end(), 0u), handles.end());
    EXPECT_EQ(handles.size(), found);
    return handles;
}

std::uint64_t AttachedDevices::handleAt(const std::string& port) {
    const auto handles = scan(64);
    const auto found = std::find_if(handles.begin(), handles.end(),
                                    [&](std::uint64_t handle) { return portOf(handle) == port; });
    return found != handles.end() ? *found : 0;
}

std::uint64_t AttachedDevices::open(const std::string& port) {
    const std::uint64_t handle = handleAt(port);
    EXPECT_EQ(api().OpenDeviceEx(handle), 0u);
    for (const auto& device : devices_) {
        device->clearRecord();
    }
    log.take();
    return handle;
}

std::uint32_t AttachedDevices::openCount(std::uint64_t handle) const {
    std::uint32_t count = 0xAAAAAAAA;
    EXPECT_EQ(api().GetDeviceInfo(handle, nullptr, nullptr, 0, &count), 0u);
    return count;
}

std::string AttachedDevices::portOf(std::uint64_t handle) const {
    std::array<char, 64> port{};
    EXPECT_EQ(api().GetDeviceInfo(handle, nullptr, port.data(), port.size(), nullptr), 0u);
    return port.data();
}

}  // namespace orvex_test
