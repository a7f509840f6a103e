#include "tests/vm/usb_lights.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

namespace orvex_test {

namespace {

constexpr std::uint32_t kSlots = 8;

}  // namespace

bool UsbLight::awaitRequest(const std::string& request) const {
    return waitUntil([&] {
        const std::vector<std::string> sofar = requests();
        return std::find(sofar.begin(), sofar.end(), request) != sofar.end();
    });
}

bool UsbLight::awaitSent(std::size_t bytes) const {
    const std::size_t before = device_.sent();
    return waitUntil([&] { return device_.sent() >= before + bytes; });
}

void UsbLight::speak(const std::string& bytes) const {
    const orvex::sim::Descriptor line(
        ::open(gadget_.deviceSide().c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK));
    EXPECT_EQ(::write(line.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
}

UsbLights::~UsbLights() {
    for (const auto& light : lights_) {
        light->pull();
    }
    for (const auto& light : lights_) {
        EXPECT_TRUE(light->awaitGone());
    }
    EXPECT_TRUE(waitUntil([] { return scan().empty(); }));
}

UsbLight& UsbLights::plugTamar() {
    UsbLight& light = make(kTamar, ORVEX_TYPE_TAMAR, "TA-7");
    light.plug();
    return light;
}

UsbLight& UsbLights::plugCedar() {
    UsbLight& light = make(kCedar, ORVEX_TYPE_CEDAR, "");
    light.plug();
    return light;
}

UsbLight& UsbLights::make(const UsbIdentity& identity, OrvexType model, const std::string& serial) {
    const auto bus = static_cast<unsigned>(lights_.size());
    orvex::sim::DeviceSetup setup;
    setup.model = model;
    setup.serialText = serial;
    lights_.push_back(std::make_unique<UsbLight>(bus, identity, setup));
    return *lights_.back();
}

std::vector<std::uint64_t> UsbLights::scan() {
    std::array<std::uint64_t, kSlots> slots{};
    std::uint32_t found = 0;
    EXPECT_EQ(ORVEX_ScanDevices(slots.data(), kSlots, &found), ORVEX_OK);
    return {slots.begin(), slots.begin() + found};
}

std::uint64_t UsbLights::handleAt(const std::string& port) {
    for (const std::uint64_t handle : scan()) {
        std::array<char, 64> path{};
        EXPECT_EQ(ORVEX_GetDeviceInfo(handle, nullptr, path.data(), 64, nullptr), ORVEX_OK);
        if (path.data() == port) {
            return handle;
        }
    }
    return 0;
}

std::uint64_t UsbLights::open(UsbLight& light) {
    const std::uint64_t handle = handleAt(light.port());
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
    light.forgetRequests();
    return handle;
}

std::string UsbLights::reply(std::uint64_t handle, const char* command, const char* value) {
    std::array<char, 2048> text{};
    const std::uint32_t status =
        ORVEX_ExecuteCommandWithValue(handle, command, text.data(), text.size(), value);
    std::ostringstream digits;
    digits << std::hex << status;
    return status == ORVEX_OK ? text.data() : digits.str();
}

long UsbLights::emptyReads() const {
    const Lines lines = log.lines();
    return std::count(lines.begin(), lines.end(),
                      "Error: SerialLink::recvArray: read returned with EOF (0)");
}

OrvexStruct UsbLights::record(std::uint64_t handle) {
    OrvexStruct record{};
    record.iSize = sizeof record;
    EXPECT_EQ(ORVEX_GetOVStruct(handle, &record), ORVEX_OK);
    return record;
}

}  // namespace orvex_test
