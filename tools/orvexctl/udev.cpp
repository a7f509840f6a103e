#include "tools/orvexctl/udev.h"

namespace orvex::tools {

namespace {

UdevDevice ttyOf(udev* context, const std::string& port) {
    const std::string name = port.substr(port.rfind('/') + 1);
    return UdevDevice(udev_device_new_from_subsystem_sysname(context, "tty", name.c_str()));
}

}  // namespace

std::string usbSerial(const std::string& port) {
    const Udev context(udev_new());
    const UdevDevice tty = context ? ttyOf(context.get(), port) : nullptr;
    udev_device* usb =
        tty ? udev_device_get_parent_with_subsystem_devtype(tty.get(), "usb", "usb_device")
            : nullptr;
    const char* serial = usb != nullptr ? udev_device_get_sysattr_value(usb, "serial") : nullptr;
    return serial != nullptr ? serial : "";
}

bool isIgnoredByModemManager(const std::string& port) {
    const Udev context(udev_new());
    const UdevDevice tty = context ? ttyOf(context.get(), port) : nullptr;
    for (udev_device* device = tty.get(); device != nullptr;
         device = udev_device_get_parent(device)) {
        for (const char* property : {"ID_MM_DEVICE_IGNORE", "ID_MM_PORT_IGNORE"}) {
            const char* value = udev_device_get_property_value(device, property);
            if (value != nullptr && std::string(value) == "1") {
                return true;
            }
        }
    }
    return false;
}

}  // namespace orvex::tools
