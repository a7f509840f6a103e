#include "tests/vm/gadget.h"

#include <fcntl.h>
#include <libudev.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace orvex_test {

namespace fs = std::filesystem;

namespace {

/// The kernel takes what comes with one write().
void write(const fs::path& path, const std::string& text) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    const ssize_t written = file < 0 ? -1 : ::write(file, text.data(), text.size());
    const int error = errno;
    if (file >= 0) {
        ::close(file);
    }
    if (written < 0) {
        throw std::system_error(error, std::generic_category(), path);
    }
}

std::string firstLine(const fs::path& path) {
    std::string line;
    std::ifstream file(path);
    std::getline(file, line);
    return line;
}

void requireInTime(bool condition, const std::string& what) {
    if (!condition) {
        throw std::runtime_error(what);
    }
}

}  // namespace

Gadget::Gadget(unsigned bus, const UsbIdentity& identity)
    : bus_(bus),
      root_("/sys/kernel/config/usb_gadget/light" + std::to_string(bus)),
      function_(root_ / "functions" / ("acm." + std::to_string(bus))) {
    const fs::path texts = root_ / "strings" / "0x409";
    const fs::path configuration = root_ / "configs" / "c.1";
    for (const fs::path& directory : {root_, texts, configuration, function_}) {
        fs::create_directory(directory);
    }
    write(root_ / "idVendor", identity.vendor);
    write(root_ / "idProduct", identity.product);
    write(texts / "product", identity.text + "\n");
    write(texts / "serialnumber", identity.serial + "\n");
    fs::create_directory_symlink(function_, configuration / "acm");
    deviceSide_ = "/dev/ttyGS" + firstLine(function_ / "port_num");
    requireInTime(waitForSystem([this] { return isThere(deviceSide_); }), "no " + deviceSide_);
}

Gadget::~Gadget() {
    pull();
    static_cast<void>(awaitGone());
    std::error_code ignored;
    fs::remove(root_ / "configs" / "c.1" / "acm", ignored);
    for (const fs::path& directory :
         {root_ / "configs" / "c.1", root_ / "strings" / "0x409", function_, root_}) {
        ::rmdir(directory.c_str());
    }
}

void Gadget::plug() {
    connect("dummy_udc." + std::to_string(bus_));
    requireInTime(waitForSystem([this] {
                      port_ = findPort();
                      return !port_.empty() && udevKnows(port_);
                  }),
                  "no port of the USB device");
    struct stat node {};
    ::stat(port_.c_str(), &node);
    database_ = "/run/udev/data/c" + std::to_string(major(node.st_rdev)) + ":" +
                std::to_string(minor(node.st_rdev));
    requireInTime(isThere(database_), "no " + database_);
}

void Gadget::unplug() {
    pull();
    requireInTime(awaitGone(), port_ + " stays");
}

/// A port plugged in before udev has forgotten the old one of its number would seem to be ready.
bool Gadget::awaitGone() const {
    return port_.empty() ||
           waitForSystem([this] { return !isThere(port_) && !isThere(database_); });
}

/// Another process may have pulled it already.
void Gadget::pull() {
    try {
        connect("\n");
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::no_such_device) {
            throw;
        }
    }
}

/// The bus's only device is at its only socket.
std::string Gadget::findPort() const {
    const fs::path controller = "/sys/devices/platform/dummy_hcd." + std::to_string(bus_);
    std::error_code gone;
    for (const auto& entry : fs::directory_iterator(controller, gone)) {
        const std::string name = entry.path().filename();
        if (name.rfind("usb", 0) == 0) {
            const std::string device = name.substr(3) + "-1";
            const fs::path ports = entry.path() / device / (device + ":1.0") / "tty";
            for (const auto& port : fs::directory_iterator(ports, gone)) {
                return "/dev/" + port.path().filename().string();
            }
        }
    }
    return "";
}

void Gadget::connect(const std::string& controller) const {
    write(root_ / "UDC", controller);
}

bool udevKnows(const std::string& port) {
    const std::unique_ptr<udev, decltype(&udev_unref)> context(udev_new(), udev_unref);
    const std::unique_ptr<udev_device, decltype(&udev_device_unref)> device(
        udev_device_new_from_subsystem_sysname(context.get(), "tty",
                                               port.substr(port.rfind('/') + 1).c_str()),
        udev_device_unref);
    return device != nullptr && udev_device_get_is_initialized(device.get()) > 0;
}

bool isThere(const std::string& path) {
    struct stat node {};
    return ::lstat(path.c_str(), &node) == 0;
}

}  // namespace orvex_test
