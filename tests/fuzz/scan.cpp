// What udev tells of the system's ports, through scans into a caller's list of handles.
//
// A line is a port, its fields separated by "|": sys path, device node, vendor, product, text; an
// empty field other than the path is missing. A line "=<slots>" scans the ports given since the
// last one into that many slots; "=c" and "=e" where udev has no context or enumeration. A line
// "O<model>|<port>|<baud rate>" opens a device after a scan of its own, replies behind it. "*"
// stands before a port that is listed but gone, "-" before one without a USB parent.
#include <libudev.h>

#include <algorithm>
#include <map>

#include "api/device_registry.h"
#include "tests/fuzz/support/fake_port.h"
#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"
#include "tests/fuzz/support/quiet_log.h"
#include "tests/fuzz/support/script.h"
#include "tests/support/fake_udev.h"

using namespace orvex_fuzz;
using orvex_test::FakeUdev;

namespace {

constexpr std::size_t kMaxPorts = 6;
constexpr int kMaxLines = 20;
constexpr std::size_t kMaxSlots = 20;
constexpr std::uint64_t kUntouched = 0x5A5A;

using UdevPort = orvex_test::FakePort;
using Mapping = std::map<std::string, OrvexType>;

UdevPort portIn(std::string_view line) {
    UdevPort port;
    port.isGone = line.substr(0, 1) == "*";
    port.hasUsbParent = line.substr(0, 1) != "-";
    const bool isMarked = port.isGone || !port.hasUsbParent;
    const std::vector<std::string> fields = piecesOf(line.substr(isMarked ? 1 : 0), "|");
    // udev's texts are C texts.
    const auto text = [&fields](std::size_t k) {
        return k < fields.size() ? fields[k].substr(0, fields[k].find('\0')) : "";
    };
    port.sysPath = text(0);
    if (!text(1).empty()) {
        port.node = text(1);
    }
    const char* const names[] = {"idVendor", "idProduct", "product"};
    for (std::size_t k = 0; k < 3; ++k) {
        if (!text(k + 2).empty()) {
            port.attributes[names[k]] = text(k + 2);
        }
    }
    return port;
}

std::string attribute(const UdevPort& port, const char* name) {
    const auto found = port.attributes.find(name);
    return found != port.attributes.end() ? found->second : "";
}

/// The ports that count, by node, with their models.
Mapping expectedMapping(const std::vector<UdevPort>& ports) {
    Mapping mapping;
    for (const UdevPort& listed : ports) {
        // udev finds the first device of a path.
        const UdevPort& port = *std::find_if(ports.begin(), ports.end(), [&](const UdevPort& p) {
            return p.sysPath == listed.sysPath;
        });
        const bool isThere = !port.isGone && port.hasUsbParent && port.node;
        if (!isThere || port.sysPath.find("ttyACM") == std::string::npos ||
            hexadecimalAt(attribute(port, "idVendor")) != 0x04D8) {
            continue;
        }
        const std::uint64_t product = hexadecimalAt(attribute(port, "idProduct"));
        if (product == 0xEA02) {
            mapping[*port.node] = ORVEX_TYPE_CEDAR;
        } else if (product == 0xEA08) {
            mapping[*port.node] = ORVEX_TYPE_TAMAR;
        }
    }
    return mapping;
}

bool allAreTerminals(const Mapping& mapping) {
    return std::all_of(mapping.begin(), mapping.end(), [](const auto& entry) {
        return entry.first.find("tty") != std::string::npos;
    });
}

void requireRegistry(const Mapping& expected, const Mapping& before) {
    holds(gl_devs.size() == expected.size(), "a device is registered for each port");
    for (const auto& [key, device] : gl_devs) {
        const auto found = expected.find(device->getComPort());
        holds(found != expected.end(), "no other device is registered");
        // A device whose port stays keeps its model, whatever the port now tells.
        const auto known = before.find(found->first);
        holds(device->getType() == (known != before.end() ? known->second : found->second),
              "the product decides the model");
    }
}

/// Each registered device once, kept in its slot when it was there, and nothing else.
void requireSlots(const std::vector<std::uint64_t>& slots,
                  const std::vector<std::uint64_t>& before) {
    std::size_t filled = 0;
    for (std::size_t k = 0; k < slots.size(); ++k) {
        const auto key = reinterpret_cast<void*>(slots[k]);
        filled += slots[k] != 0 ? 1 : 0;
        holds(slots[k] == 0 || gl_devs.count(key) == 1, "a slot holds a device's handle or 0");
        holds(slots[k] == 0 || std::count(slots.begin(), slots.end(), slots[k]) == 1,
              "no handle is given twice");
        const bool wasValid = gl_devs.count(reinterpret_cast<void*>(before[k])) == 1;
        holds(!wasValid || slots[k] == before[k], "a device keeps its slot");
    }
    holds(filled == gl_devs.size(), "each device has a slot");
}

class Scanner {
  public:
    explicit Scanner(FakePort& terminal) : terminal_(terminal) {}

    void scan(std::string_view text);
    void open(std::string_view text);

    std::vector<UdevPort> ports;

  private:
    void requireResult(std::uint32_t status, std::uint32_t count, const Mapping& expected,
                       const Mapping& before, const std::vector<std::uint64_t>& slotsBefore);

    void requireReleased(const FakeUdev& udev) const;

    FakePort& terminal_;
    std::vector<std::uint64_t> slots_;
};

Mapping registered() {
    Mapping mapping;
    for (const auto& [key, device] : gl_devs) {
        mapping[device->getComPort()] = device->getType();
    }
    return mapping;
}

void Scanner::requireReleased(const FakeUdev& udev) const {
    holds(udev.unreleased() == 0, "udev's objects are released");
    holds(udev.misused() == 0, "udev's objects are released once and not used afterwards");
    const bool hasOpen = std::any_of(gl_devs.begin(), gl_devs.end(),
                                     [](const auto& entry) { return entry.second->isConnected(); });
    holds(terminal_.isOpen() == hasOpen, "a port is open while its device is");
}

void Scanner::scan(std::string_view text) {
    FakeUdev udev;
    std::swap(udev.ports, ports);
    udev.hasContext = text.substr(0, 1) != "c";
    udev.hasEnumeration = text.substr(0, 1) != "e";
    const bool hasUdev = udev.hasContext && udev.hasEnumeration;
    const auto slotCount = static_cast<std::uint32_t>(decimalAt(text.substr(hasUdev ? 0 : 1)));
    slots_.resize(slotCount % kMaxSlots);
    const std::vector<std::uint64_t> slotsBefore = slots_;
    slots_.push_back(kUntouched);
    const Mapping before = registered();
    const Mapping expected = hasUdev ? expectedMapping(udev.ports) : Mapping();
    const std::size_t sent = terminal_.exchanges.size();
    std::uint32_t count = kUntouched;
    const std::uint32_t status =
        ORVEX_ScanDevices(slots_.data(), static_cast<std::uint32_t>(slotsBefore.size()), &count);
    requireKnownStatus(status);
    holds(slots_.back() == kUntouched, "nothing is written behind the slots");
    slots_.pop_back();
    holds(terminal_.exchanges.size() == sent, "a scan sends nothing");
    requireReleased(udev);
    requireResult(status, count, expected, before, slotsBefore);
}

/// One port at a time is open: another device is left closed.
void Scanner::open(std::string_view text) {
    if (terminal_.isOpen()) {
        return;
    }
    FakeUdev udev;
    std::swap(udev.ports, ports);
    const std::vector<std::string> fields = piecesOf(text, "|");
    const auto type = static_cast<std::uint32_t>(decimalAt(fields[0]));
    const std::string port = fields.size() > 1 ? fields[1].substr(0, fields[1].find('\0')) : "";
    const auto baud = static_cast<std::uint32_t>(fields.size() > 2 ? decimalAt(fields[2]) : 9600);
    std::uint64_t handle = 0;
    const std::uint32_t status = ORVEX_OpenDevice(&handle, type, port.c_str(), baud);
    requireKnownStatus(status);
    requireReleased(udev);
    holds((handle != 0) == (status == ORVEX_OK), "opening gives a handle");
    if (status == ORVEX_OK) {
        const auto& device = gl_devs.at(reinterpret_cast<void*>(handle));
        holds(baud >= 9600, "a device is opened at 9600 bits per second at least");
        holds(port.empty() || device->getComPort() == port, "the wanted port is opened");
        holds(type == ORVEX_TYPE_UNDEFINED || device->getType() == type, "the model is opened");
        holds(device->getOpenCount() == 1, "an open device is open once");
    }
}

void Scanner::requireResult(std::uint32_t status, std::uint32_t count, const Mapping& expected,
                            const Mapping& before, const std::vector<std::uint64_t>& slotsBefore) {
    if (slotsBefore.empty()) {
        holds(status == ORVEX_ERR_INVALID_ARG && count == kUntouched, "a scan needs a slot");
    } else if (!allAreTerminals(expected)) {
        holds(status == ORVEX_ERR_INVALID_ARG && count == kUntouched && slots_ == slotsBefore,
              "a port that is no terminal ends the scan");
    } else {
        requireRegistry(expected, before);
        holds(count == expected.size(), "a scan counts the devices");
        const bool fits = expected.size() <= slotsBefore.size();
        holds(status == (fits ? ORVEX_OK : ORVEX_ERR_BUFFER_TOO_SMALL), "a scan needs slots");
        if (fits) {
            requireSlots(slots_, slotsBefore);
        } else {
            holds(slots_ == slotsBefore, "a list that is too small stays as it is");
        }
    }
}

void checkArguments() {
    std::uint64_t slot = 0;
    std::uint32_t count = 0;
    holds(ORVEX_ScanDevices(nullptr, 1, &count) == ORVEX_ERR_INVALID_HANDLE &&
              ORVEX_ScanDevices(&slot, 1, nullptr) == ORVEX_ERR_INVALID_ARG,
          "a scan needs a list and a count");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Script script(data, size);
    quietLog(size % 4 == 0);
    FakePort terminal(script);
    Scanner scanner(terminal);
    checkArguments();
    for (int k = 0; k < kMaxLines; ++k) {
        const auto line = script.nextStep();
        if (!line) {
            break;
        }
        if (line->substr(0, 1) == "=") {
            scanner.scan(line->substr(1));
        } else if (line->substr(0, 1) == "O") {
            scanner.open(line->substr(1));
        } else if (scanner.ports.size() < kMaxPorts) {
            scanner.ports.push_back(portIn(*line));
        }
    }
    scanner.scan("19");
    scanner.scan("19");
    holds(gl_devs.empty(), "devices that are gone are forgotten");
    return 0;
}
