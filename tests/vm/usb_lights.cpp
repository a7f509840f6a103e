#include "tests/vm/usb_lights.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvex_test {

namespace {

constexpr std::uint32_t kSlots = 8;
const std::string kEnd = "\\r";

bool has(const std::vector<std::string>& lines, const std::string& line, long times) {
    return std::count(lines.begin(), lines.end(), line) >= times;
}

}  // namespace

UsbLight::UsbLight(unsigned bus, const UsbIdentity& identity, const SimulatedLight& light)
    : gadget_(bus, identity), simulator_(std::make_unique<ChildProgram>(command(light))) {
    const std::string announcement = light.model + " at " + gadget_.deviceSide();
    for (const std::string& complaint : simulator_->linesUntil(announcement)) {
        throw std::runtime_error(complaint);
    }
}

std::vector<std::string> UsbLight::command(const SimulatedLight& light) const {
    const std::string scenario = directory_.file("scenario.json");
    std::ofstream(scenario) << R"({"devices": [{"model": ")" << light.model << R"(", "serial": ")"
                            << light.serial << R"("}], "timeline": [)" << light.timeline << "]}";
    return {
        ORVEX_SIM,    "serve", "--tty", gadget_.deviceSide(), "--trace", directory_.file("trace"),
        "--scenario", scenario};
}

std::vector<std::string> UsbLight::requests() const {
    return said('>');
}

bool UsbLight::awaitRequest(const std::string& request, long times) const {
    return waitUntil([&] { return has(said('>'), request, times); });
}

bool UsbLight::awaitReply(const std::string& reply) const {
    return waitUntil([&] { return has(said('<'), reply, 1); });
}

/// One side's lines of the trace: "    0.785677 1 > ip=250,500,500\r".
std::vector<std::string> UsbLight::said(char side) const {
    std::vector<std::string> lines;
    std::istringstream trace(contentsOf(directory_.path() / "trace"));
    for (std::string line; std::getline(trace, line);) {
        std::istringstream words(line);
        std::string time;
        std::string number;
        std::string mark;
        std::string bytes;
        words >> time >> number >> mark >> std::ws;
        std::getline(words, bytes);
        if (mark == std::string(1, side)) {
            const std::size_t end = bytes.rfind(kEnd);
            lines.push_back(bytes.substr(0, end));
        }
    }
    return lines;
}

UsbLights::~UsbLights() {
    for (const auto& light : lights_) {
        light->pull();
    }
    EXPECT_TRUE(waitUntil([] { return scan().empty(); }));
}

UsbLight& UsbLights::plugTamar(const std::string& timeline) {
    UsbLight& light = make(kTamar, {"Tamar", "TA-7", timeline});
    light.plug();
    return light;
}

UsbLight& UsbLights::plugCedar(const std::string& timeline) {
    UsbLight& light = make(kCedar, {"Cedar", "CE-3", timeline});
    light.plug();
    return light;
}

UsbLight& UsbLights::make(const UsbIdentity& identity, const SimulatedLight& light) {
    const auto bus = static_cast<unsigned>(lights_.size());
    lights_.push_back(std::make_unique<UsbLight>(bus, identity, light));
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

std::uint64_t UsbLights::open(const UsbLight& light) {
    const std::uint64_t handle = handleAt(light.port());
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
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
