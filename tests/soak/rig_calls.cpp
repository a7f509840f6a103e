// Calls on one device, and calls with wrong arguments.
#include <algorithm>
#include <array>
#include <cstring>

#include "tests/soak/commands.h"
#include "tests/soak/refusal.h"
#include "tests/soak/reply_text.h"
#include "tests/soak/rig.h"

namespace orvex_soak {

namespace {

constexpr std::size_t kBuffer = 1200;
constexpr char kUntouched = 0x55;

void ignoreLine(const char* /*line*/) {}

/// A buffer of which the caller has given @p length bytes, with a reply in it.
std::string filledBuffer(const std::string& reply, std::size_t length) {
    std::string buffer(kBuffer, kUntouched);
    const std::string text = reply.substr(0, length - 1);
    buffer.replace(0, length, text + std::string(length - text.size(), '\0'));
    return buffer;
}

bool begins(const Event& event, const char* request) {
    return event.kind == Event::Kind::sent && event.request.rfind(request, 0) == 0;
}

}  // namespace

void Rig::open() {
    DeviceModel* const device = anyDevice(20);
    if (device == nullptr) {
        return plugIn();
    }
    action_ = "open " + device->path();
    faultFor(device->path(), !device->isConnected());
    const std::uint32_t status = ORVEX_OpenDeviceEx(device->handle());
    Transcript transcript = transcriptOf(device->path());
    const std::uint32_t expected = device->open(9600, transcript);
    transcript.expectEnd();
    expectQuiet(device->path());
    expectStatus(status, expected);
    figures_.opened += expected == ORVEX_OK ? 1 : 0;
}

void Rig::close() {
    DeviceModel* const device = anyDevice();
    if (device == nullptr) {
        return plugIn();
    }
    action_ = "close " + device->path();
    faultFor(device->path(), false);
    ORVEX_CloseDevice(device->handle());
    Transcript transcript = transcriptOf(device->path());
    device->close(transcript);
    transcript.expectEnd();
    expectQuiet(device->path());
}

void Rig::execute() {
    DeviceModel* const device = anyDevice();
    if (device == nullptr) {
        return plugIn();
    }
    const std::string command = randomCommand(device->type());
    const std::string value = randomValue(command);
    const bool plain = value.empty() && random_.percent(50);
    const auto length =
        static_cast<std::uint32_t>(random_.percent(80) ? kBuffer : random_.below(12));
    action_ = "execute " + command + " with <" + value.substr(0, 40) + "> on " + device->path();
    faultFor(device->path(), false);
    const std::string untouched(kBuffer, kUntouched);
    std::string buffer = untouched;
    const std::uint32_t status =
        plain ? ORVEX_ExecuteCommand(device->handle(), command.c_str(), buffer.data(), length)
              : ORVEX_ExecuteCommandWithValue(device->handle(), command.c_str(), buffer.data(),
                                              length, value.c_str());
    Transcript transcript = transcriptOf(device->path());
    std::string reply;
    std::uint32_t expected = device->execute(command, value, reply, transcript);
    transcript.expectEnd();
    expectQuiet(device->path());
    if (expected == ORVEX_OK && length < reply.size()) {
        expected = ORVEX_ERR_BUFFER_TOO_SMALL;
    }
    expectStatus(status, expected);
    requireThat(buffer == (expected == ORVEX_OK ? filledBuffer(reply, length) : untouched),
                "the reply buffer holds something else");
}

/// Mostly one that the model has.
std::string Rig::randomCommand(OrvexType model) {
    std::string command = random_.oneOf(commandNames());
    while (!requestOf(model, command) && random_.percent(90)) {
        command = random_.oneOf(commandNames());
    }
    return command;
}

std::string Rig::randomValue(const std::string& command) {
    // Behind some requests a value would stay with the device and spoil its next request.
    const bool endsItself =
        requestOf(ORVEX_TYPE_TAMAR, command).value_or("").find('\r') != std::string::npos;
    const bool asks = command.rfind("Get", 0) == 0;
    if (endsItself || random_.percent(asks ? 90 : 30)) {
        return "";
    }
    if (random_.percent(3)) {
        return std::string(static_cast<std::size_t>(random_.between(995, 1030)), '1');
    }
    std::string value;
    for (int count = random_.percent(30) ? 1 : random_.between(1, 16); count > 0; --count) {
        append(value, random_.percent(50) ? random_.between(1, 16) : random_.between(0, 100) * 10);
    }
    return value;
}

void Rig::setRecord() {
    DeviceModel* const device = anyDevice();
    if (device == nullptr) {
        return plugIn();
    }
    const OrvexStruct record = randomRecord(*device);
    action_ = "set the record of " + device->path();
    faultFor(device->path(), false);
    const std::uint32_t status = ORVEX_SetOVStruct(device->handle(), &record);
    const std::vector<Event> events = wire_.tracks()[device->path()].events;
    Transcript transcript(events);
    const std::uint32_t expected = device->setRecord(record, transcript);
    transcript.expectEnd();
    expectQuiet(device->path());
    expectStatus(status, expected);
    if (expected == ORVEX_OK && !faulty_) {
        checkDeviceFollows(*device, events);
    }
}

OrvexStruct Rig::randomRecord(const DeviceModel& device) {
    OrvexStruct record = device.record();
    if (random_.percent(3)) {
        record.iSize = static_cast<std::uint16_t>(random_.percent(50) ? 2007 : 4000);
    }
    if (random_.percent(5)) {
        record.iDeviceInfo = random_.below(1000);
    }
    if (random_.percent(10)) {
        record.iNumChannels = random_.between(-1, record.iNumChannels + 1);
    }
    const auto slots =
        static_cast<std::size_t>(std::clamp<int>(record.iNumChannels, 1, ORVEX_MAX_CHANNEL));
    for (int changes = random_.between(0, 4); changes > 0; --changes) {
        OrvexChannel& channel = record.aChannels[random_.below(slots)];
        if (random_.percent(50)) {
            channel.iIntensity = random_.percent(90) ? random_.between(-50, 1100) : -2147483647;
        } else {
            channel.iState = random_.percent(90) ? channel.iState ^ 1 : random_.between(-3, 3);
        }
    }
    // Of these the library takes nothing.
    record.aChannels[random_.below(slots)].iMaxIntensity += random_.between(0, 1);
    record.iUnitStatus += random_.between(0, 1);
    return record;
}

/// After a record has been sent without a fault, the device itself is as the record says.
void Rig::checkDeviceFollows(const DeviceModel& device, const std::vector<Event>& events) const {
    const auto plugged = wire_.plugged().find(device.path());
    if (plugged == wire_.plugged().end()) {
        return;
    }
    const orvex::sim::DeviceState actual = plugged->second->device().state();
    const OrvexStruct& wanted = device.state();
    const auto sent = [&events](const char* request) {
        return std::any_of(events.begin(), events.end(),
                           [request](const Event& event) { return begins(event, request); });
    };
    const bool intensities = sent("ip=");
    const bool states = (sent("of=") || sent("on=")) && !device.isSwitchedOff();
    const std::size_t count =
        std::min(actual.channels.size(), static_cast<std::size_t>(wanted.iNumChannels));
    for (std::size_t k = 0; k < count; ++k) {
        const bool isFitted = actual.channels[k].wavelength != ORVEX_EMPTY_POSITION;
        requireThat(!intensities || actual.channels[k].intensity == wanted.aChannels[k].iIntensity,
                    "the device has another intensity at position " + std::to_string(k + 1));
        requireThat(!states || !isFitted ||
                        actual.channels[k].on == ((wanted.aChannels[k].iState & 1) != 0),
                    "the device is not switched so at position " + std::to_string(k + 1));
    }
}

void Rig::switchLight() {
    DeviceModel* const device = anyDevice();
    if (device == nullptr) {
        return plugIn();
    }
    const bool enable = random_.percent(75);
    const bool on = random_.percent(60);
    action_ = std::string("switch ") + (enable ? "" : "nothing ") + (on ? "on " : "off ") +
              device->path();
    faultFor(device->path(), false);
    const std::uint32_t status = ORVEX_SwitchOrvex(device->handle(), enable, on);
    Transcript transcript = transcriptOf(device->path());
    const std::uint32_t expected = device->switchOrvex(enable, on, transcript);
    transcript.expectEnd();
    expectQuiet(device->path());
    expectStatus(status, expected);
}

void Rig::askInfo() {
    std::uint32_t numbers[4] = {};
    ORVEX_GetVersion(&numbers[0], &numbers[1], &numbers[2], &numbers[3]);
    requireThat(numbers[0] == 1 && numbers[1] == 1 && numbers[2] == 0 && numbers[3] == 1,
                "the version is wrong");
    const DeviceModel* const device = anyDevice();
    if (device == nullptr) {
        return;
    }
    const auto length = static_cast<std::uint32_t>(random_.between(0, 20));
    action_ = "ask for the port into " + std::to_string(length) + " bytes";
    std::string port(20, kUntouched);
    std::uint32_t type = 0;
    std::uint32_t count = 0xAAAA;
    const std::uint32_t status =
        ORVEX_GetDeviceInfo(device->handle(), &type, port.data(), length, &count);
    const bool fits = length >= device->path().size() + 2;
    expectStatus(status, fits ? ORVEX_OK : ORVEX_ERR_BUFFER_TOO_SMALL);
    std::string expected(20, kUntouched);
    if (fits) {
        expected.replace(0, device->path().size() + 1, device->path() + '\0');
    }
    requireThat(port == expected, "the port's buffer holds something else");
    requireThat(type == device->type(), "the type must be written");
    requireThat(count == (fits ? device->openCount() : 0xAAAA), "the open count is wrong");
}

void Rig::useWrongHandle() {
    const std::uint64_t handle = wrongHandle();
    action_ = "use a handle that is none";
    char reply[4] = {};
    OrvexStruct record{};
    record.iSize = 2008;
    expectStatus(ORVEX_OpenDeviceEx(handle), ORVEX_ERR_INVALID_HANDLE);
    expectStatus(ORVEX_OpenDeviceEx(0), ORVEX_ERR_INVALID_HANDLE);
    expectStatus(ORVEX_ExecuteCommand(handle, nullptr, reply, 4), ORVEX_ERR_NO_HANDLE);
    expectStatus(ORVEX_SetOVStruct(handle, &record), ORVEX_ERR_NO_HANDLE);
    expectStatus(ORVEX_GetOVStruct(handle, &record), ORVEX_ERR_NO_HANDLE);
    expectStatus(ORVEX_SwitchOrvex(handle, true, true), ORVEX_ERR_NO_HANDLE);
    expectStatus(ORVEX_GetDeviceInfo(handle, nullptr, nullptr, 0, nullptr), ORVEX_ERR_NO_HANDLE);
    ORVEX_CloseDevice(handle);
    expectQuiet();
}

void Rig::useWrongArguments() {
    action_ = "use wrong arguments";
    std::uint64_t used = 0x77;
    expectStatus(ORVEX_OpenDevice(nullptr, 8, "", 9600), ORVEX_ERR_INVALID_HANDLE);
    expectStatus(ORVEX_OpenDevice(&used, 8, "", 9600), ORVEX_ERR_INVALID_HANDLE);
    requireThat(used == 0x77, "a used handle must stay");
    if (const DeviceModel* const device = anyDevice()) {
        char reply[4] = {};
        OrvexStruct record{};
        record.iSize = 2007;
        expectStatus(ORVEX_ExecuteCommand(device->handle(), nullptr, reply, 4),
                     ORVEX_ERR_INVALID_ARG);
        expectStatus(ORVEX_ExecuteCommand(device->handle(), "Connect", nullptr, 4),
                     ORVEX_ERR_INVALID_ARG);
        expectStatus(ORVEX_SetOVStruct(device->handle(), &record), ORVEX_ERR_STRUCT_SIZE);
        expectStatus(ORVEX_GetOVStruct(device->handle(), &record), ORVEX_ERR_STRUCT_SIZE);
    }
    expectQuiet();
}

void Rig::changeLog() {
    const auto bits = static_cast<std::uint32_t>(random_.below(0x80)) |
                      (random_.percent(20) ? LOG_BIT_TIMESTAMP : 0U);
    action_ = "change the log";
    ORVEX_SetLogBits(bits);
    ORVEX_RegisterLogCallback(random_.percent(80) ? ignoreLine : nullptr);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    requireThat(ORVEX_GetLogBits() == bits, "the log's mask is wrong");
    requireThat(ORVEX_GetLogMode() == LOG_METHOD_CALLBACK, "the log's mode is wrong");
}

}  // namespace orvex_soak
