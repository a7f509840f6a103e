#include "tests/transcripts/taped_light.h"

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "api/device_registry.h"
#include "api/driver_exception.h"
#include "sim/fault.h"
#include "tests/support/light.h"

namespace orvex_test {

namespace {

using Kind = Event::Kind;

orvex::sim::DeviceSetup setupOf(OrvexType model) {
    orvex::sim::DeviceSetup setup;
    setup.model = model;
    return setup;
}

void takeDown(const char* line) {
    if (Tape* const tape = Tape::current()) {
        tape->add(Kind::Log, line);
    }
}

std::string hexadecimal(std::uint32_t status) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%08x", status);
    return text.data();
}

std::string flag(bool value) {
    return value ? "true" : "false";
}

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

void replaceAll(std::string& text, const std::string& what, const std::string& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
}

}  // namespace

TapedLight::TapedLight(OrvexType model, std::uint32_t logBits)
    : port_(setupOf(model)), tape_(port_.path()) {
    ORVEX_SetLogBits(logBits);
    ORVEX_RegisterLogCallback(takeDown);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
}

TapedLight::~TapedLight() {
    gl_devs.erase(key_);
}

std::vector<Event> TapedLight::events() const {
    std::vector<Event> events = tape_.events();
    for (Event& event : events) {
        replaceAll(event.text, port_.path(), "{port}");
        replaceAll(event.text, handleText(key_), "{handle}");
    }
    return events;
}

void TapedLight::attach() {
    // Scanning finds two of the models only; the library has to know the others all the same.
    step("attach");
    auto device = std::make_unique<LightDevice>(port_.model(), port_.path());
    key_ = device->hDev();
    gl_devs.emplace(key_, std::move(device));
}

void TapedLight::open() {
    step("ORVEX_OpenDeviceEx");
    result(ORVEX_OpenDeviceEx(handle()));
}

void TapedLight::close() {
    step("ORVEX_CloseDevice");
    ORVEX_CloseDevice(handle());
}

void TapedLight::command(const std::string& name, const std::string& value) {
    step("ORVEX_ExecuteCommandWithValue " + quoted(name) + " " + quoted(value));
    std::array<char, 2048> reply{};
    result(ORVEX_ExecuteCommandWithValue(handle(), name.c_str(), reply.data(), reply.size(),
                                         value.c_str()));
    tape_.add(Kind::Result, quoted(reply.data()));
}

void TapedLight::writeRecord(const std::string& what,
                             const std::function<void(OrvexStruct&)>& change) {
    step("ORVEX_SetOVStruct: " + what);
    OrvexStruct changed = record();
    change(changed);
    result(ORVEX_SetOVStruct(handle(), &changed));
}

void TapedLight::switchOrvex(bool enable, bool on) {
    step("ORVEX_SwitchOrvex enable=" + flag(enable) + " on=" + flag(on));
    result(ORVEX_SwitchOrvex(handle(), enable, on));
}

void TapedLight::setLamp(bool on) {
    directly("setLampState " + flag(on), [on](LightDevice& light) { light.setLampState(on); });
}

void TapedLight::setShutter(bool open) {
    directly("setShutterState " + flag(open),
             [open](LightDevice& light) { light.setShutterState(open); });
}

void TapedLight::ping() {
    step("ping");
    tape_.add(Kind::Result, flag(device().ping()));
}

void TapedLight::refuse(const std::string& command) {
    port_.addFault(orvex::sim::onCommand(command), orvex::sim::errorReply());
}

void TapedLight::answer(const std::string& command, const std::string& bytes) {
    port_.replyWith(command, bytes);
}

void TapedLight::whileSilent(const std::function<void()>& steps) {
    port_.clearRecord();
    port_.addFault(orvex::sim::onAny(), orvex::sim::silence());
    tape_.expectSilence(true);
    steps();
    tape_.expectSilence(false);
    // The next exchange purges the line, and with it what the device has not taken yet.
    if (!port_.waitForRequests(1)) {
        throw std::runtime_error("the device has received nothing");
    }
    port_.clearFaults();
}

void TapedLight::unplug() {
    port_.hangUp();
}

OrvexStruct TapedLight::record() {
    OrvexStruct record{};
    record.iSize = sizeof record;
    if (ORVEX_GetOVStruct(handle(), &record) != ORVEX_OK) {
        throw std::runtime_error("no state record");
    }
    return record;
}

void TapedLight::step(const std::string& what) {
    tape_.add(Kind::Step, what);
}

void TapedLight::result(std::uint32_t status) {
    tape_.add(Kind::Result, hexadecimal(status));
}

void TapedLight::directly(const std::string& what, const std::function<void(LightDevice&)>& call) {
    step(what);
    try {
        call(device());
        tape_.add(Kind::Result, "done");
    } catch (const DriverException& failure) {
        tape_.add(Kind::Result, "throws " + quoted(failure.what()));
    }
}

LightDevice& TapedLight::device() const {
    return *gl_devs.at(key_);
}

std::uint64_t TapedLight::handle() const {
    return reinterpret_cast<std::uint64_t>(key_);
}

}  // namespace orvex_test
