// What must hold after every step.
#include <sstream>

#include "api/device_registry.h"
#include "tests/soak/refusal.h"
#include "tests/soak/rig.h"

namespace orvex_soak {

namespace {

std::string hexadecimal(std::uint32_t code) {
    std::ostringstream text;
    text << "0x" << std::hex << code;
    return text.str();
}

}  // namespace

void Rig::checkAll() {
    requireThat(gl_devs.size() == devices_.size(),
                "the library has " + std::to_string(gl_devs.size()) + " devices, but must have " +
                    std::to_string(devices_.size()));
    std::size_t connected = 0;
    for (const auto& [path, device] : devices_) {
        checkDevice(device);
        connected += device.isConnected() ? 1 : 0;
    }
    requireThat(wire_.openCount() == connected,
                "the library has " + std::to_string(wire_.openCount()) +
                    " ports open, but must have " + std::to_string(connected));
}

void Rig::checkDevice(const DeviceModel& device) const {
    std::uint32_t type = 0;
    std::uint32_t count = 0;
    std::array<char, 32> port{};
    requireThat(ORVEX_GetDeviceInfo(device.handle(), &type, port.data(), port.size(), &count) == 0,
                device.path() + ": the handle must be known");
    requireThat(type == device.type(), device.path() + ": type " + std::to_string(type));
    requireThat(device.path() == port.data(), device.path() + ": port " + port.data());
    requireThat(count == device.openCount(), device.path() + ": open count " +
                                                 std::to_string(count) + ", but must be " +
                                                 std::to_string(device.openCount()));
    OrvexStruct record{};
    record.iSize = 2008;
    requireThat(ORVEX_GetOVStruct(device.handle(), &record) == 0,
                device.path() + ": the record must be readable");
    const std::string difference = differenceOf(record, device.record());
    requireThat(difference.empty(), device.path() + ": record: " + difference);
}

void Rig::expectStatus(std::uint32_t actual, std::uint32_t expected) {
    figures_.failures += expected != ORVEX_OK ? 1 : 0;
    requireThat(actual == expected, "the call returned " + hexadecimal(actual) +
                                        ", but must return " + hexadecimal(expected));
}

/// Nothing has happened on any port but one.
void Rig::expectQuiet(const Path& except) {
    for (const auto& [path, track] : wire_.tracks()) {
        if (path != except) {
            Transcript(track.events).expectEnd();
        }
    }
}

/// One that is connected, if there is one, with this chance: with the others little happens.
DeviceModel* Rig::anyDevice(std::size_t connectedChance) {
    std::vector<DeviceModel*> all;
    std::vector<DeviceModel*> connected;
    for (auto& [path, device] : devices_) {
        all.push_back(&device);
        if (device.isConnected()) {
            connected.push_back(&device);
        }
    }
    if (all.empty()) {
        return nullptr;
    }
    return random_.oneOf(!connected.empty() && random_.percent(connectedChance) ? connected : all);
}

Transcript Rig::transcriptOf(const Path& path) {
    return Transcript(wire_.tracks()[path].events);
}

/// A handle that is not registered. (An address may be used again for a new device.)
std::uint64_t Rig::wrongHandle() {
    constexpr std::uint64_t kNeverValid = 0x10;
    const std::uint64_t handle =
        gone_.empty() || random_.percent(30) ? kNeverValid : gone_[random_.below(gone_.size())];
    for (const auto& [path, device] : devices_) {
        if (device.handle() == handle) {
            return kNeverValid;
        }
    }
    return handle;
}

}  // namespace orvex_soak
