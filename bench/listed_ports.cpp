#include "bench/listed_ports.h"

#include <libudev.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>

struct udev_device {
    std::string path;
    std::string node;
};

struct udev_list_entry {
    std::size_t index;
};

struct udev {};
struct udev_enumerate {};

namespace {

udev context;
udev_enumerate enumeration;
std::deque<udev_device> devices;
std::deque<udev_list_entry> entries;

udev_list_entry* entryAt(std::size_t index) {
    return index < entries.size() ? &entries[index] : nullptr;
}

}  // namespace

namespace orvex_bench {

void listPorts(std::size_t count) {
    devices.clear();
    entries.clear();
    for (std::size_t index = 0; index < count; ++index) {
        const std::string name = "ttyACM" + std::to_string(index);
        devices.push_back({"/sys/devices/usb1/tty/" + name, "/dev/" + name});
        entries.push_back({index});
    }
}

}  // namespace orvex_bench

extern "C" {

udev* udev_new() {
    return &context;
}
udev* udev_unref(udev* /*context*/) {
    return nullptr;
}
udev_enumerate* udev_enumerate_new(udev* /*context*/) {
    return &enumeration;
}
udev_enumerate* udev_enumerate_unref(udev_enumerate* /*enumeration*/) {
    return nullptr;
}
int udev_enumerate_add_match_subsystem(udev_enumerate* /*enumeration*/, const char* /*name*/) {
    return 0;
}
int udev_enumerate_scan_devices(udev_enumerate* /*enumeration*/) {
    return 0;
}
udev_list_entry* udev_enumerate_get_list_entry(udev_enumerate* /*enumeration*/) {
    return entryAt(0);
}
udev_list_entry* udev_list_entry_get_next(udev_list_entry* entry) {
    return entryAt(entry->index + 1);
}
const char* udev_list_entry_get_name(udev_list_entry* entry) {
    return devices[entry->index].path.c_str();
}
udev_device* udev_device_new_from_syspath(udev* /*context*/, const char* path) {
    return &devices[std::strtoul(std::strstr(path, "ttyACM") + 6, nullptr, 10)];
}
udev_device* udev_device_unref(udev_device* /*device*/) {
    return nullptr;
}
const char* udev_device_get_devnode(udev_device* device) {
    return device->node.c_str();
}
udev_device* udev_device_get_parent_with_subsystem_devtype(udev_device* device,
                                                           const char* /*subsystem*/,
                                                           const char* /*type*/) {
    return device;
}
const char* udev_device_get_sysattr_value(udev_device* /*device*/, const char* name) {
    const std::string attribute = name;
    if (attribute == "idVendor") {
        return "04d8";
    }
    return attribute == "idProduct" ? "ea08" : "Orvex Tamar";
}

}  // extern "C"
