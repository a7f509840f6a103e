#include "tools/orvexctl/attached.h"

#include <algorithm>
#include <cstdio>
#include <map>

#include "tools/common/models.h"
#include "tools/orvexctl/driver_log.h"
#include "tools/orvexctl/status.h"
#include "tools/orvexctl/udev.h"

namespace orvex::tools {

namespace {

constexpr std::size_t kSlots = 16;
constexpr std::size_t kLongestPort = 4096;

/// The library keeps handles in their slots from scan to scan.
std::vector<std::uint64_t> scan() {
    static std::vector<std::uint64_t> handles(kSlots);
    std::uint32_t count = 0;
    std::uint32_t status = ORVEX_ERR_BUFFER_TOO_SMALL;
    for (int attempt = 0; attempt < 2 && status == ORVEX_ERR_BUFFER_TOO_SMALL; ++attempt) {
        handles.resize(std::max<std::size_t>(handles.size(), count));
        status =
            ORVEX_ScanDevices(handles.data(), static_cast<std::uint32_t>(handles.size()), &count);
    }
    if (status != ORVEX_OK) {
        throw statusFailure(status, "scanning for lights", lastError());
    }
    return handles;
}

AttachedLight describe(std::uint64_t handle) {
    std::vector<char> port(kLongestPort);
    AttachedLight light;
    light.handle = handle;
    const std::uint32_t status = ORVEX_GetDeviceInfo(
        handle, &light.model, port.data(), static_cast<std::uint32_t>(port.size()), nullptr);
    if (status != ORVEX_OK) {
        throw statusFailure(status, "asking for a light's port", lastError());
    }
    light.port = port.data();
    light.serial = usbSerial(light.port);
    return light;
}

bool portsInOrder(const AttachedLight& a, const AttachedLight& b) {
    return a.port.size() != b.port.size() ? a.port.size() < b.port.size() : a.port < b.port;
}

}  // namespace

std::vector<AttachedLight> attachedLights() {
    std::vector<AttachedLight> lights;
    for (const std::uint64_t handle : scan()) {
        if (handle != 0) {
            lights.push_back(describe(handle));
        }
    }
    std::sort(lights.begin(), lights.end(), portsInOrder);
    int number = 0;
    for (AttachedLight& light : lights) {
        light.number = ++number;
    }
    return lights;
}

std::string lookedFor() {
    const std::map<std::uint16_t, OrvexType> products(gl_usb_pid_types.begin(),
                                                      gl_usb_pid_types.end());
    std::string text;
    for (const auto& [product, model] : products) {
        char identity[sizeof "04d8:0000"];
        std::snprintf(identity, sizeof identity, "%04x:%04x", kUsbVendor, product);
        text += (text.empty() ? "USB devices " : ", ") + std::string(identity) + " (" +
                modelName(model) + ")";
    }
    return text + " with a port named ttyACM";
}

}  // namespace orvex::tools
