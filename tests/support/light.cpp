#include "tests/support/light.h"

#include <cstdio>
#include <filesystem>
#include <system_error>

#include "api/driver_exception.h"
#include "sim/fault.h"

namespace orvex_test {

namespace {

using orvex::sim::onAny;
using orvex::sim::scripted;

orvex::sim::DeviceSetup setupOf(OrvexType model) {
    orvex::sim::DeviceSetup setup;
    setup.model = model;
    return setup;
}

bool isLedModel(OrvexType model) {
    return model >= ORVEX_TYPE_SPRUCE;
}

void answerReadOut(orvex::sim::SimulatedDevice& port, const ReadOut& readOut) {
    port.replyWith("GetWaveLengthLED", readOut.wavelengths);
    port.replyWith("GetUnitStatus", readOut.states);
    port.replyWith("MinimumIntensityPercentage", readOut.minima);
    port.replyWith("GetIntensity", readOut.intensities);
    port.replyWith("GetTemperature", readOut.temperatures);
    port.replyWith("GetNameLED", readOut.names);
    port.replyWith("GetUnitSerialNumber", readOut.serial);
}

}  // namespace

ReadOut groupedReadOut() {
    ReadOut readOut;
    readOut.wavelengths = "365,405,470,525,999,590,625,999\r";
    readOut.states = "0,0,0,0,0,0,0,0\r";
    readOut.minima = "50,50,50,50,50,50,50,50\r";
    readOut.intensities = "100,200,300,400,500,600,700,800\r";
    readOut.temperatures = "30,30,30,30,30,30,30,30\r";
    readOut.names = "UV,VIOLET,BLUE,GREEN,,AMBER,RED,\r";
    return readOut;
}

Light::Light(OrvexType model, const ReadOut& readOut)
    : port(setupOf(model)), device(model, port.path()) {
    port.addFault(onAny(), scripted("ok\r"));
    if (isLedModel(model)) {
        answerReadOut(port, readOut);
    }
}

void Light::refuse(const std::string& command) {
    port.addFault(orvex::sim::onCommand(command), orvex::sim::errorReply());
}

std::vector<std::string> Light::takeRequests() {
    std::vector<std::string> requests = port.requests();
    port.clearRecord();
    return requests;
}

std::string Light::exchange(const std::string& request) {
    std::string reply;
    device.executeString(request, reply);
    return reply;
}

std::string Light::command(const std::string& name, const std::string& value) {
    std::string reply;
    device.executeCommand(name, reply, value);
    return reply;
}

OrvexStruct Light::record() const {
    OrvexStruct record{};
    device.getOVStruct(record);
    return record;
}

OpenLight::OpenLight(OrvexType model, const ReadOut& readOut) : Light(model, readOut) {
    try {
        open();
    } catch (const DriverException&) {
        if (model != ORVEX_TYPE_ROWAN && model != ORVEX_TYPE_SPRUCE) {
            throw;
        }
    }
    port.clearRecord();
}

std::string handleText(const void* handle) {
    char text[32] = "";
    std::snprintf(text, sizeof text, "%p", handle);
    return text;
}

std::size_t openDescriptors(const orvex::sim::SimulatedDevice& port) {
    const std::filesystem::path terminal = port.slavePath();
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        count += std::filesystem::read_symlink(entry.path(), ignored) == terminal ? 1 : 0;
    }
    return count;
}

}  // namespace orvex_test
