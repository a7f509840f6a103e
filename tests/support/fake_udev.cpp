#include "tests/support/fake_udev.h"

#include <libudev.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

orvex_test::FakeUdev* current = nullptr;

/// What every object of libudev has here.
struct Object {
    int references = 1;
    std::size_t misused = 0;

    /// Notes a use, which is wrong after the release.
    void use() { misused += references > 0 ? 0 : 1; }
    void release() {
        use();
        --references;
    }
};

}  // namespace

struct udev : Object {};

struct udev_enumerate : Object {
    bool isForTty = false;
    bool hasScanned = false;
};

struct udev_list_entry {
    std::size_t index;
    udev_enumerate* enumeration;
};

struct udev_device : Object {
    orvex_test::FakePort port;
    udev_device* child = nullptr;  ///< Given: this is its USB parent.
    std::unique_ptr<udev_device> parent;

    udev_device& owner() { return child != nullptr ? *child : *this; }
};

namespace orvex_test {

struct FakeUdev::Objects {
    std::vector<std::unique_ptr<udev>> contexts;
    std::vector<std::unique_ptr<udev_enumerate>> enumerations;
    std::vector<std::unique_ptr<udev_list_entry>> entries;
    std::vector<std::unique_ptr<udev_device>> devices;

    template <typename Visit>
    void visit(Visit see) const {
        std::for_each(contexts.begin(), contexts.end(), [&](const auto& object) { see(*object); });
        std::for_each(enumerations.begin(), enumerations.end(),
                      [&](const auto& object) { see(*object); });
        std::for_each(devices.begin(), devices.end(), [&](const auto& object) { see(*object); });
    }

    udev_list_entry* entry(std::size_t index, udev_enumerate* enumeration) {
        if (index >= current->ports.size()) {
            return nullptr;
        }
        entries.push_back(std::make_unique<udev_list_entry>(udev_list_entry{index, enumeration}));
        return entries.back().get();
    }
};

namespace {

FakePort portOf(int number, const char* product, const char* text) {
    const std::string name = "ttyACM" + std::to_string(number);
    FakePort port;
    port.sysPath = "/sys/devices/usb1/1-" + std::to_string(number) + "/tty/" + name;
    port.node = "/dev/" + name;
    port.attributes = {{"idVendor", "04d8"}, {"idProduct", product}, {"product", text}};
    return port;
}

}  // namespace

FakePort tamarPort(int number) {
    return portOf(number, "ea08", "Orvex Tamar");
}
FakePort cedarPort(int number) {
    return portOf(number, "ea02", "Orvex Cedar");
}

FakeUdev::FakeUdev() : objects(std::make_unique<Objects>()) {
    current = this;
}
FakeUdev::~FakeUdev() {
    current = nullptr;
}

std::size_t FakeUdev::unreleased() const {
    std::size_t count = 0;
    objects->visit([&count](const Object& object) { count += object.references > 0 ? 1 : 0; });
    return count;
}

std::size_t FakeUdev::handedOut() const {
    std::size_t count = 0;
    objects->visit([&count](const Object& /*object*/) { ++count; });
    return count;
}

std::size_t FakeUdev::misused() const {
    std::size_t count = 0;
    objects->visit([&count](const Object& object) { count += object.misused; });
    return count;
}

namespace {

FakeUdev& noted(const std::string& call) {
    if (current == nullptr) {
        throw std::logic_error("no udev is set up");
    }
    current->calls.push_back(call);
    return *current;
}

const char* textOrNull(const std::optional<std::string>& text) {
    return text ? text->c_str() : nullptr;
}

/// A released object's texts are gone.
void spoil(std::string& text) {
    std::fill(text.begin(), text.end(), '?');
}

void spoil(FakePort& port) {
    spoil(port.sysPath);
    if (port.node) {
        spoil(*port.node);
    }
    for (auto& [name, value] : port.attributes) {
        spoil(value);
    }
}

}  // namespace

}  // namespace orvex_test

using orvex_test::FakePort;
using orvex_test::noted;

extern "C" {

udev* udev_new() {
    auto& fake = noted("udev_new");
    if (!fake.hasContext) {
        return nullptr;
    }
    return fake.objects->contexts.emplace_back(std::make_unique<udev>()).get();
}

udev* udev_unref(udev* context) {
    noted("udev_unref");
    context->release();
    return nullptr;
}

udev_enumerate* udev_enumerate_new(udev* context) {
    auto& fake = noted("udev_enumerate_new");
    context->use();
    if (!fake.hasEnumeration) {
        return nullptr;
    }
    return fake.objects->enumerations.emplace_back(std::make_unique<udev_enumerate>()).get();
}

udev_enumerate* udev_enumerate_unref(udev_enumerate* enumeration) {
    noted("udev_enumerate_unref");
    enumeration->release();
    return nullptr;
}

int udev_enumerate_add_match_subsystem(udev_enumerate* enumeration, const char* subsystem) {
    noted("udev_enumerate_add_match_subsystem");
    enumeration->use();
    enumeration->isForTty = std::string(subsystem) == "tty";
    return 0;
}

int udev_enumerate_scan_devices(udev_enumerate* enumeration) {
    auto& fake = noted("udev_enumerate_scan_devices");
    enumeration->use();
    enumeration->hasScanned = fake.scanResult >= 0;
    return fake.scanResult;
}

udev_list_entry* udev_enumerate_get_list_entry(udev_enumerate* enumeration) {
    auto& fake = noted("udev_enumerate_get_list_entry");
    enumeration->use();
    const bool isReady = enumeration->isForTty && enumeration->hasScanned;
    return isReady ? fake.objects->entry(0, enumeration) : nullptr;
}

udev_list_entry* udev_list_entry_get_next(udev_list_entry* entry) {
    auto& fake = noted("udev_list_entry_get_next");
    entry->enumeration->use();
    return fake.objects->entry(entry->index + 1, entry->enumeration);
}

const char* udev_list_entry_get_name(udev_list_entry* entry) {
    auto& fake = noted("udev_list_entry_get_name");
    entry->enumeration->use();
    return fake.ports[entry->index].sysPath.c_str();
}

udev_device* udev_device_new_from_syspath(udev* context, const char* path) {
    auto& fake = noted("udev_device_new_from_syspath");
    context->use();
    const auto found = std::find_if(fake.ports.begin(), fake.ports.end(),
                                    [path](const FakePort& port) { return port.sysPath == path; });
    if (found == fake.ports.end() || found->isGone) {
        return nullptr;
    }
    auto& device = *fake.objects->devices.emplace_back(std::make_unique<udev_device>());
    device.port = *found;
    return &device;
}

const char* udev_device_get_devnode(udev_device* device) {
    noted("udev_device_get_devnode");
    device->use();
    return orvex_test::textOrNull(device->port.node);
}

udev_device* udev_device_get_parent_with_subsystem_devtype(udev_device* device,
                                                           const char* subsystem,
                                                           const char* type) {
    noted("udev_device_get_parent_with_subsystem_devtype");
    device->use();
    const bool isUsb = std::string(subsystem) == "usb" && std::string(type) == "usb_device";
    if (!isUsb || !device->port.hasUsbParent) {
        return nullptr;
    }
    device->parent = std::make_unique<udev_device>();
    device->parent->child = device;
    return device->parent.get();
}

const char* udev_device_get_sysattr_value(udev_device* device, const char* name) {
    noted(std::string("udev_device_get_sysattr_value ") + name);
    device->owner().use();
    if (device->child == nullptr) {
        return nullptr;
    }
    const auto& attributes = device->child->port.attributes;
    const auto found = attributes.find(name);
    return found != attributes.end() ? found->second.c_str() : nullptr;
}

udev_device* udev_device_unref(udev_device* device) {
    noted("udev_device_unref");
    // A parent is its child's: to release it is a mistake.
    device->owner().misused += device->child != nullptr ? 1 : 0;
    device->release();
    orvex_test::spoil(device->port);
    return nullptr;
}

}  // extern "C"
