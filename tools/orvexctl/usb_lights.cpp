#include "tools/orvexctl/usb_lights.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include "device/models.h"
#include "tools/orvexctl/udev.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

constexpr int kHexadecimal = 16;

std::string readLine(const fs::path& path) {
    std::string line;
    std::ifstream file(path);
    std::getline(file, line);
    return line;
}

std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> entries;
    std::error_code unreadable;
    for (fs::directory_iterator entry(directory, unreadable), end; !unreadable && entry != end;
         entry.increment(unreadable)) {
        entries.push_back(entry->path());
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

/// The port of a USB device: below one of its interfaces, "1-2:1.0/tty/ttyACM0".
std::string ttyOf(const fs::path& usb) {
    for (const fs::path& interface : entriesOf(usb)) {
        if (interface.filename().string().find(':') != std::string::npos) {
            const std::vector<fs::path> ports = entriesOf(interface / "tty");
            if (!ports.empty()) {
                return ports.front().filename().string();
            }
        }
    }
    return "";
}

std::optional<OrvexType> modelOf(unsigned long product) {
    for (const auto& [listed, model] : gl_usb_pid_types) {
        if (listed == product) {
            return model;
        }
    }
    return std::nullopt;
}

}  // namespace

std::vector<UsbLight> usbLights(const fs::path& sys) {
    std::vector<UsbLight> lights;
    for (const fs::path& usb : entriesOf(sys / "bus" / "usb" / "devices")) {
        const std::string vendor = readLine(usb / "idVendor");
        const std::string product = readLine(usb / "idProduct");
        if (std::strtoul(vendor.c_str(), nullptr, kHexadecimal) != kUsbVendor) {
            continue;
        }
        UsbLight light;
        light.identity = vendor;
        light.identity.append(":").append(product);
        light.product = readLine(usb / "product");
        light.model = modelOf(std::strtoul(product.c_str(), nullptr, kHexadecimal));
        light.tty = ttyOf(usb);
        lights.push_back(light);
    }
    return lights;
}

}  // namespace orvex::tools
