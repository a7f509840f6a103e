#include "sim/testbed.h"

#include <umockdev.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "device/models.h"
#include "sim/simulated_device.h"

namespace orvex::sim {

namespace fs = std::filesystem;

namespace {

constexpr int kTtyMajor = 166;
constexpr std::uint16_t kFirstUnlistedProduct = 0xEAF0;

struct Unref {
    void operator()(void* object) const noexcept { g_object_unref(object); }
};
template <typename T>
using Object = std::unique_ptr<T, Unref>;

/// Owns a text that GLib has allocated.
std::string taken(gchar* text) {
    const std::unique_ptr<gchar, decltype(&g_free)> owner(text, g_free);
    return text;
}

/// @throws std::runtime_error with GLib's own text when an operation has failed
void require(gboolean succeeded, GError* error) {
    if (succeeded != FALSE) {
        return;
    }
    const std::string text = error != nullptr ? error->message : "The testbed refused an operation";
    g_clear_error(&error);
    throw std::runtime_error(text);
}

/// Lets the client's own ioctl happen, in the client: the node leads to a real terminal.
gboolean passThrough(UMockdevIoctlBase* /*handler*/, UMockdevIoctlClient* client,
                     gpointer /*data*/) {
    gint code = 0;
    const gint result = umockdev_ioctl_client_execute(client, &code, nullptr);
    umockdev_ioctl_client_complete(client, result, code);
    return TRUE;
}

std::string hexadecimal(std::uint16_t number) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (int shift = 12; shift >= 0; shift -= 4) {
        text += kDigits[(number >> shift) & 0xF];
    }
    return text;
}

std::string attribute(const std::string& name, const std::string& value) {
    const std::string escaped = taken(g_strescape(value.c_str(), nullptr));
    return "A: " + name + "=" + escaped + "\\n\n";
}

/// Where one port's devices stand below /sys.
struct Place {
    unsigned number = 0;
    std::string usb;
    std::string interfaceName;
    std::string interface;
    std::string tty;
};

Place placeOf(unsigned number, const std::string& name) {
    Place place;
    place.number = number;
    const std::string usbName = "1-" + std::to_string(number);
    place.usb = "/devices/pci0000:00/0000:00:14.0/usb1/" + usbName;
    place.interfaceName = usbName + ":1.0";
    place.interface = place.usb + "/" + place.interfaceName;
    place.tty = place.interface + "/tty/" + name;
    return place;
}

std::string usbDescription(const Place& place, const UsbIdentity& identity) {
    std::string text = "P: " + place.usb + "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n" +
                       attribute("busnum", "1") +
                       attribute("devnum", std::to_string(place.number + 1)) +
                       attribute("bNumInterfaces", "1") + attribute("idVendor", identity.vendor) +
                       attribute("idProduct", identity.product);
    if (identity.productText) {
        text += attribute("product", *identity.productText);
    }
    return text + "\nP: " + place.interface + "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\n\n";
}

std::string ttyDescription(const Place& place, const std::string& port, unsigned minor) {
    const std::string numbers = std::to_string(kTtyMajor) + ":" + std::to_string(minor);
    return "P: " + place.tty + "\nE: SUBSYSTEM=tty\nE: DEVNAME=" + port +
           "\nE: MAJOR=" + std::to_string(kTtyMajor) + "\nE: MINOR=" + std::to_string(minor) +
           "\nL: device=../../../" + place.interfaceName + "\n" + attribute("dev", numbers) + "\n";
}

}  // namespace

struct Testbed::Implementation {
    Object<UMockdevTestbed> testbed{umockdev_testbed_new()};
    Object<UMockdevIoctlBase> handler{umockdev_ioctl_base_new()};
    std::map<std::string, Place> ports;
    std::string root = taken(umockdev_testbed_get_root_dir(testbed.get()));
    unsigned next = 1;

    [[nodiscard]] fs::path nodeOf(const std::string& port) const { return root + port; }
    [[nodiscard]] std::string freePort() const;
    void makeNode(const std::string& port, const std::string& terminal);
    void describe(const std::string& text);
};

std::string Testbed::Implementation::freePort() const {
    for (unsigned number = 0;; ++number) {
        std::string port = "/dev/ttyACM" + std::to_string(number);
        if (ports.count(port) == 0) {
            return port;
        }
    }
}

/// Before the port is described: that announces it.
void Testbed::Implementation::makeNode(const std::string& port, const std::string& terminal) {
    // A link that leads nowhere stands for a port that cannot be opened.
    fs::create_symlink(terminal.empty() ? "nowhere" : terminal, nodeOf(port));
    if (!terminal.empty()) {
        GError* error = nullptr;
        const gboolean attached =
            umockdev_testbed_attach_ioctl(testbed.get(), port.c_str(), handler.get(), &error);
        require(attached, error);
    }
}

void Testbed::Implementation::describe(const std::string& text) {
    GError* error = nullptr;
    const gboolean added = umockdev_testbed_add_from_string(testbed.get(), text.c_str(), &error);
    require(added, error);
}

UsbIdentity usbIdentityOf(OrvexType model) {
    const auto listed =
        std::find_if(gl_usb_pid_types.begin(), gl_usb_pid_types.end(),
                     [model](const auto& product) { return product.second == model; });
    const std::uint16_t product =
        listed != gl_usb_pid_types.end()
            ? listed->first
            : static_cast<std::uint16_t>(kFirstUnlistedProduct + (model & 0xF));
    UsbIdentity identity;
    identity.product = hexadecimal(product);
    identity.productText = "Orvex " + gl_type_names.at(model);
    return identity;
}

Testbed::Testbed() : implementation_(std::make_unique<Implementation>()) {
    const fs::path marker = implementation_->nodeOf("/dev/testbed");
    fs::create_directories(marker);
    const bool redirected = ::access("/dev/testbed", F_OK) == 0;
    fs::remove(marker);
    if (!redirected) {
        throw std::runtime_error("A testbed needs " + preloadLibrary() + " in LD_PRELOAD");
    }
    g_signal_connect(implementation_->handler.get(), "handle-ioctl", G_CALLBACK(passThrough),
                     nullptr);
}

Testbed::~Testbed() = default;

std::string Testbed::plug(const SimulatedDevice& device) {
    return plug(device, usbIdentityOf(device.model()));
}

std::string Testbed::plug(const SimulatedDevice& device, const UsbIdentity& identity) {
    return plug(identity, device.path());
}

std::string Testbed::plug(const UsbIdentity& identity, const std::string& terminal) {
    Implementation& bed = *implementation_;
    std::string port = identity.kernelName.empty() ? bed.freePort() : "/dev/" + identity.kernelName;
    if (bed.ports.count(port) != 0) {
        throw std::runtime_error(port + " is there already");
    }
    bed.makeNode(port, terminal);
    const unsigned number = bed.next++;
    const Place place = placeOf(number, port.substr(sizeof "/dev/" - 1));
    bed.describe(usbDescription(place, identity) + ttyDescription(place, port, number));
    bed.ports.emplace(port, place);
    return port;
}

void Testbed::unplug(const std::string& port) {
    Implementation& bed = *implementation_;
    const auto found = bed.ports.find(port);
    if (found == bed.ports.end()) {
        throw std::runtime_error(port + " is not there");
    }
    const Place place = found->second;
    bed.ports.erase(found);
    umockdev_testbed_detach_ioctl(bed.testbed.get(), port.c_str(), nullptr);
    fs::remove(bed.nodeOf(port));
    for (const std::string* device : {&place.tty, &place.interface, &place.usb}) {
        const std::string path = "/sys" + *device;
        umockdev_testbed_uevent(bed.testbed.get(), path.c_str(), "remove");
        umockdev_testbed_remove_device(bed.testbed.get(), path.c_str());
    }
}

std::string Testbed::root() const {
    return implementation_->root;
}

std::string Testbed::preloadLibrary() {
    return "libumockdev-preload.so.0";
}

}  // namespace orvex::sim
