// Calls that change the list of devices.
#include <algorithm>
#include <memory>

#include "api/device_registry.h"
#include "tests/soak/refusal.h"
#include "tests/soak/rig.h"
#include "tests/support/fake_udev.h"

namespace orvex_soak {

using orvex_test::FakeUdev;

namespace {

constexpr std::size_t kRemembered = 16;

int numberIn(const std::string& path) {
    return path.back() - '0';
}

/// Ports that are none of the library's.
std::vector<orvex_test::FakePort> foreignPorts() {
    orvex_test::FakePort otherVendor = orvex_test::tamarPort(7);
    otherVendor.attributes["idVendor"] = "0403";
    orvex_test::FakePort vanishing = orvex_test::tamarPort(8);
    vanishing.isGone = true;
    orvex_test::FakePort unknownProduct = orvex_test::cedarPort(9);
    unknownProduct.attributes["idProduct"] = "0001";
    return {otherVendor, vanishing, unknownProduct};
}

}  // namespace

/// Runs a call that scans while udev lists what is plugged in.
void Rig::underUdev(const std::function<void()>& call) {
    FakeUdev udev;
    udev.ports = foreignPorts();
    for (const auto& [path, socket] : sockets_) {
        udev.ports.push_back(socket.isCedar ? orvex_test::cedarPort(numberIn(path))
                                            : orvex_test::tamarPort(numberIn(path)));
    }
    call();
    requireThat(udev.unreleased() == 0 && udev.misused() == 0, "udev's objects must be released");
    ++figures_.scans;
}

/// Brings the model to where a scan must have brought the registry: devices whose port is gone are
/// destroyed, new ones registered.
void Rig::followScan() {
    for (auto device = devices_.begin(); device != devices_.end();) {
        if (sockets_.count(device->first) != 0) {
            ++device;
            continue;
        }
        Track& track = wire_.tracks()[device->first];
        Transcript port(track.events);
        device->second.destroy(port);
        port.expectEnd();
        track.events.clear();
        gone_.push_back(device->second.handle());
        if (gone_.size() > kRemembered) {
            gone_.pop_front();
        }
        device = devices_.erase(device);
    }
    for (const auto& [handle, device] : gl_devs) {
        const std::string path = device->getComPort();
        const auto socket = sockets_.find(path);
        requireThat(socket != sockets_.end(), path + " must not be registered");
        if (devices_.count(path) == 0) {
            const OrvexType type = socket->second.isCedar ? ORVEX_TYPE_CEDAR : ORVEX_TYPE_TAMAR;
            devices_.try_emplace(path, type, path, reinterpret_cast<std::uintptr_t>(handle));
        }
    }
    requireThat(devices_.size() == sockets_.size(), "every attached device must be registered");
}

/// Registers a device of a model that udev cannot tell.
void Rig::adopt(const Path& path, OrvexType model) {
    auto device = std::make_unique<LightDevice>(model, path);
    void* const handle = device->hDev();
    gl_devs[handle] = std::move(device);
    devices_.try_emplace(path, model, path, reinterpret_cast<std::uintptr_t>(handle));
}

void Rig::scan() {
    const auto length = static_cast<std::uint32_t>(random_.percent(85) ? 8 : random_.between(1, 7));
    if (random_.percent(5)) {
        slots_[random_.below(slots_.size())] = random_.percent(50) ? wrongHandle() : 0;
    }
    const std::vector<std::uint64_t> before(slots_.begin(), slots_.end());
    action_ += " scan into " + std::to_string(length) + " slots";
    std::uint32_t found = 0xAAAA;
    std::uint32_t status = 0;
    underUdev([&] { status = ORVEX_ScanDevices(slots_.data(), length, &found); });
    followScan();
    expectQuiet();
    requireThat(found == devices_.size(), "found " + std::to_string(found));
    const bool fits = length >= devices_.size();
    expectStatus(status, fits ? ORVEX_OK : ORVEX_ERR_BUFFER_TOO_SMALL);
    if (fits) {
        checkSlots(before, length);
    } else {
        requireThat(std::equal(before.begin(), before.end(), slots_.begin()),
                    "the slots must stay as they are");
    }
}

/// Handles keep their slots, others are cleared, and new ones are in the first slots that are free.
void Rig::checkSlots(const std::vector<std::uint64_t>& before, std::uint32_t length) {
    std::vector<std::uint64_t> missing;
    for (const auto& [path, device] : devices_) {
        missing.push_back(device.handle());
    }
    const std::vector<std::uint64_t> registered = missing;
    const auto isRegistered = [&registered](std::uint64_t handle) {
        return std::find(registered.begin(), registered.end(), handle) != registered.end();
    };
    const auto forget = [&missing](std::uint64_t handle) {
        const auto found = std::find(missing.begin(), missing.end(), handle);
        const bool isThere = found != missing.end();
        if (isThere) {
            missing.erase(found);
        }
        return isThere;
    };
    for (std::size_t k = 0; k < length; ++k) {
        if (before[k] != 0 && isRegistered(before[k])) {
            requireThat(slots_[k] == before[k], "a handle must keep its slot");
            forget(before[k]);
        }
    }
    for (std::size_t k = 0; k < before.size(); ++k) {
        const bool isKept = k >= length || (before[k] != 0 && isRegistered(before[k]));
        if (isKept) {
            requireThat(slots_[k] == before[k], "a slot must not change");
        } else if (missing.empty()) {
            requireThat(slots_[k] == 0, "a slot must be clear");
        } else {
            requireThat(forget(slots_[k]), "a free slot must take a new handle");
        }
    }
}

void Rig::scanWrongly() {
    std::uint32_t found = 0xAAAA;
    std::uint64_t slot = 0x1234;
    switch (random_.below(3)) {
        case 0:
            action_ = "scan without slots";
            expectStatus(ORVEX_ScanDevices(nullptr, 0, &found), ORVEX_ERR_INVALID_HANDLE);
            break;
        case 1:
            action_ = "scan into no slots";
            expectStatus(ORVEX_ScanDevices(&slot, 0, &found), ORVEX_ERR_INVALID_ARG);
            break;
        default:
            action_ = "scan without a count";
            expectStatus(ORVEX_ScanDevices(&slot, 1, nullptr), ORVEX_ERR_INVALID_ARG);
            break;
    }
    requireThat(found == 0xAAAA && slot == 0x1234, "arguments must stay as they are");
    expectQuiet();
}

}  // namespace orvex_soak
