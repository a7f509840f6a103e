#include "discovery/port_discovery.h"

#include <cstdlib>

#include "device/models.h"
#include "discovery/udev_objects.h"
#include "log/log.h"

namespace {

constexpr unsigned long kMaxProduct = 0xFFFF;

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
    const orvex::UdevDevice device(udev_device_new_from_syspath(context, sysPath.c_str()));
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
    if (vendor != orvex::kUsbVendor || product > kMaxProduct) {
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
    const orvex::Udev context(udev_new());
    if (context == nullptr) {
        return ports;
    }
    const orvex::UdevEnumeration enumeration(udev_enumerate_new(context.get()));
    if (enumeration == nullptr) {
        return ports;
    }
    udev_enumerate_add_match_subsystem(enumeration.get(), "tty");
    udev_enumerate_scan_devices(enumeration.get());
    for (udev_list_entry* entry = udev_enumerate_get_list_entry(enumeration.get());
         entry != nullptr; entry = udev_list_entry_get_next(entry)) {
        if (const char* sysPath = udev_list_entry_get_name(entry); sysPath != nullptr) {
            addPort(context.get(), sysPath, ports);
        }
    }
    return ports;
}
