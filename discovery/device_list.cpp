#include "discovery/device_list.h"

#include <string>
#include <unordered_map>

#include "api/device_registry.h"
#include "api/driver_exception.h"
#include "device/handle_text.h"
#include "discovery/port_discovery.h"
#include "log/log_line.h"

namespace {

using Ports = std::unordered_map<std::string, OrvexType>;

void removeVanished(const Ports& ports) {
    std::vector<void*> vanished;
    for (const auto& [handle, device] : gl_devs) {
        const std::string port = device->getComPort();
        if (ports.count(port) == 0) {
            clog(LOG_BIT_INFO,
                 "updateDeviceList: LightDevice <%X, %u> @ %s was not found anymore. Close and "
                 "delete.",
                 orvex::lowHandleBits(handle), device->getType(), port.c_str());
            vanished.push_back(handle);
        }
    }
    for (void* handle : vanished) {
        gl_devs.erase(handle);
    }
}

/// The registered devices by their ports; of several at one port the first.
std::unordered_map<std::string, LightDevice*> devicesByPort() {
    std::unordered_map<std::string, LightDevice*> devices;
    for (const auto& [handle, device] : gl_devs) {
        devices.emplace(device->getComPort(), device.get());
    }
    return devices;
}

void* registerDevice(OrvexType type, const std::string& port) {
    auto device = std::make_unique<LightDevice>(type, port);
    void* handle = device->hDev();
    clog(LOG_BIT_INFO, "updateDeviceList: new LightDevice <%X, %u> registered at COM port \"%s\"",
         orvex::lowHandleBits(handle), type, port.c_str());
    gl_devs[handle] = std::move(device);
    return handle;
}

std::vector<void*> addNew(const Ports& ports) {
    const auto registered = devicesByPort();
    std::vector<void*> handles;
    for (const auto& [port, type] : ports) {
        if (const auto known = registered.find(port); known != registered.end()) {
            void* const handle = known->second->hDev();
            clog(LOG_BIT_INFO,
                 "updateDeviceList: LightDevice <%X> already registered at COM port \"%s\"",
                 orvex::lowHandleBits(handle), port.c_str());
            handles.push_back(handle);
        } else {
            handles.push_back(registerDevice(type, port));
        }
    }
    return handles;
}

}  // namespace

std::vector<void*> updateDeviceList() {
    const Ports ports = getComMapping();
    if (ports.empty()) {
        log(LOG_BIT_INFO, "updateDeviceList: no Orvex devices found.");
    }
    removeVanished(ports);
    try {
        return addNew(ports);
    } catch (const DriverException& e) {
        orvex::logLine(LOG_BIT_ERROR, "updateDeviceList: failed. Exception: ", e.what());
        throw;
    }
}
