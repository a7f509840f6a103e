#include "discovery/port_discovery.h"

#include <libudev.h>

#include <cstdlib>
#include <memory>

#include "device/models.h"
#include "log/log.h"

namespace {

constexpr unsigned long kVendor = 0x04D8;
constexpr unsigned long kMaxProduct = 0xFFFF;

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const noexcept {
        release(object);
    }
};

using Udev = std::unique_ptr<udev, Release<udev_unref>>;
using Enumeration = std::unique_ptr<udev_enumerate, Release<udev_enumerate_unref>>;
using Device = std::unique_ptr<udev_device, Release<udev_device_unref>>;

std::string attribute(udev_device* device, const char* name) {
    const char* value = udev_device_get_sysattr_value(device, name);
    return value != nullptr ? value : "";
}

unsigned long hexadecimal(const std::string& text) {
    return std::strtoul(text.c_str(), nullptr, 16);
}

void logPort(const std::string& product, const std::string& node, const std::string& sysPath,
             OrvexType type) {
    log(LOG_BIT_INFO, "LightDevice::getComMapping: found port name in product attribute: " +
                          product + ", udev: " + sysPath);
    log(LOG_BIT_INFO, "LightDevice::getComMapping: port: " + node + ", udev: " + sysPath);
    const std::string& name = gl_type_names.at(type);
    if (product.find(name) != std::string::npos) {
        log(LOG_BIT_DETAIL, "LightDevice::getComMapping: matches type: " + name);
    } else {
        // The text is only a hint: vendor and product identifier have decided the model.
        logerr("LightDevice::getComMapping: product attribute: \"" + product +
               "\" does not match any known device type!");
    }
}

void addPort(udev* context, const std::string& sysPath,
             std::unordered_map<std::string, OrvexType>& ports) {
    // A device may vanish at any time: each object and attribute may be missing.
    const Device device(udev_device_new_from_syspath(context, sysPath.c_str()));
    if (device == nullptr || sysPath.find("ttyACM") == std::string::npos) {
        return;
    }
    const char* node = udev_device_get_devnode(device.get());
    udev_device* usb =
        udev_device_get_parent_with_subsystem_devtype(device.get(), "usb", "usb_device");
    if (node == nullptr || usb == nullptr) {
        return;
    }
    const unsigned long vendor = hexadecimal(attribute(usb, "idVendor"));
    const unsigned long product = hexadecimal(attribute(usb, "idProduct"));
    if (vendor != kVendor || product > kMaxProduct) {
        return;
    }
    const auto model = gl_usb_pid_types.find(static_cast<std::uint16_t>(product));
    if (model == gl_usb_pid_types.end()) {
        return;
    }
    ports[node] = model->second;
    logPort(attribute(usb, "product"), node, sysPath, model->second);
}

}  // namespace

std::unordered_map<std::string, OrvexType> getComMapping() {
    std::unordered_map<std::string, OrvexType> ports;
    const Udev context(udev_new());
    if (context == nullptr) {
        return ports;
    }
    const Enumeration enumeration(udev_enumerate_new(context.get()));
    if (enumeration == nullptr) {
        return ports;
    }
    udev_enumerate_add_match_subsystem(enumeration.get(), "tty");
    udev_enumerate_scan_devices(enumeration.get());
    for (udev_list_entry* entry = udev_enumerate_get_list_entry(enumeration.get());
         entry != nullptr; entry = udev_list_entry_get_next(entry)) {
        addPort(context.get(), udev_list_entry_get_name(entry), ports);
    }
    return ports;
}
