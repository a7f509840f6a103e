#include "tests/faults/port_listing.h"

#include <libudev.h>

#include <cstring>
#include <utility>

#include "tests/faults/injector.h"

using orvex_faults::Call;
using orvex_faults::injector;
using orvex_faults::PortListing;

// Objects of libudev are told apart by their addresses alone; nothing is allocated.
struct udev {};
struct udev_enumerate {
    bool hasScanned;
};
struct udev_list_entry {
    bool isOrvex;
};
struct udev_device {
    bool isOrvex;
    bool isUsb;
};

namespace {

PortListing* listing = nullptr;
std::size_t objects = 0;

udev context;
udev_enumerate enumeration;
udev_list_entry entries[] = {{false}, {true}};
udev_device devices[] = {{false, false}, {true, false}};
udev_device usb{true, true};

constexpr const char* kPlainPath = "/sys/devices/platform/serial8250/tty/ttyS0";
constexpr const char* kOrvexPath = "/sys/devices/usb1/1-1/tty/ttyACM7";

bool fails(const std::string& function) {
    return injector().next(Call::Udev, {}, 0, function).has_value();
}

/// The object, counted; null when the function is to fail.
template <typename Object>
Object* handOut(Object& object, const std::string& function) {
    if (fails(function)) {
        return nullptr;
    }
    ++objects;
    return &object;
}

std::string about(const char* function, bool isOrvex) {
    const orvex_faults::OutsideLibrary test;
    return std::string(function) + (isOrvex ? " ttyACM" : " ttyS");
}

}  // namespace

namespace orvex_faults {

PortListing::PortListing(std::string theNode, std::string theProduct)
    : node(std::move(theNode)), product(std::move(theProduct)) {
    listing = this;
    objects = 0;
}
PortListing::~PortListing() {
    listing = nullptr;
}

std::size_t PortListing::unreleased() const noexcept {
    return objects;
}

}  // namespace orvex_faults

extern "C" {

udev* udev_new() {
    return handOut(context, "new");
}

udev* udev_unref(udev* /*context*/) {
    --objects;
    return nullptr;
}

udev_enumerate* udev_enumerate_new(udev* /*context*/) {
    enumeration.hasScanned = false;
    return handOut(enumeration, "enumerate_new");
}

udev_enumerate* udev_enumerate_unref(udev_enumerate* /*enumeration*/) {
    --objects;
    return nullptr;
}

int udev_enumerate_add_match_subsystem(udev_enumerate* /*enumeration*/, const char* /*name*/) {
    return fails("match") ? -1 : 0;
}

int udev_enumerate_scan_devices(udev_enumerate* scanned) {
    scanned->hasScanned = !fails("scan");
    return scanned->hasScanned ? 0 : -1;
}

udev_list_entry* udev_enumerate_get_list_entry(udev_enumerate* scanned) {
    return fails("first") || !scanned->hasScanned ? nullptr : &entries[0];
}

udev_list_entry* udev_list_entry_get_next(udev_list_entry* entry) {
    const bool hasNext = !entry->isOrvex && listing->isPluggedIn;
    return fails(about("next", entry->isOrvex)) || !hasNext ? nullptr : &entries[1];
}

const char* udev_list_entry_get_name(udev_list_entry* entry) {
    if (fails(about("name", entry->isOrvex))) {
        return nullptr;
    }
    return entry->isOrvex ? kOrvexPath : kPlainPath;
}

udev_device* udev_device_new_from_syspath(udev* /*context*/, const char* path) {
    const bool isOrvex = std::strcmp(path, kOrvexPath) == 0;
    return handOut(devices[isOrvex ? 1 : 0], about("device", isOrvex));
}

const char* udev_device_get_devnode(udev_device* device) {
    if (fails(about("node", device->isOrvex))) {
        return nullptr;
    }
    return device->isOrvex ? listing->node.c_str() : "/dev/ttyS0";
}

udev_device* udev_device_get_parent_with_subsystem_devtype(udev_device* device,
                                                           const char* /*subsystem*/,
                                                           const char* /*type*/) {
    return fails(about("parent", device->isOrvex)) || !device->isOrvex ? nullptr : &usb;
}

const char* udev_device_get_sysattr_value(udev_device* device, const char* name) {
    if (fails(name) || !device->isUsb) {
        return nullptr;
    }
    if (std::strcmp(name, "idVendor") == 0) {
        return "04d8";
    }
    return std::strcmp(name, "idProduct") == 0 ? listing->product.c_str() : "Orvex Tamar Cedar";
}

udev_device* udev_device_unref(udev_device* /*device*/) {
    --objects;
    return nullptr;
}

}  // extern "C"
