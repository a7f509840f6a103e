#include "tools/orvexctl/light.h"

#include <algorithm>
#include <utility>

#include "device/intensity.h"
#include "device/reply.h"
#include "tools/orvexctl/driver_log.h"
#include "tools/orvexctl/replies.h"
#include "tools/orvexctl/status.h"

namespace orvex::tools {

Light::Light(OrvexType model, std::string port)
    : model_(model), port_(std::move(port)), commands_(commandsOfModel(model)) {}

bool Light::knows(const std::string& command) const {
    return commands_.count(command) != 0;
}

std::string Light::title() const {
    return modelName(model_) + " on " + port_;
}

std::string Light::onPort(const std::string& what) const {
    return what + " on " + port_;
}

void Light::open() {
    forgetLastError();
    const std::uint32_t status = doOpen();
    // The models whose tables lack a request of the read-out take commands all the same.
    if (status != ORVEX_OK && status != ORVEX_ERR_NOT_SUPPORTED) {
        throw statusFailure(status, "opening the " + onPort(modelName(model_)), lastError());
    }
    complete_ = status == ORVEX_OK;
    fresh_ = true;
}

void Light::close() {
    if (complete_) {
        doClose();
        return;
    }
    // Closing would only miscount the opens of a device that was not read out.
    std::string reply;
    for (const char* request : {"CloseShutter", "Disconnect"}) {
        if (knows(request) && doExecute(request, "", reply) != ORVEX_OK) {
            return;
        }
    }
}

std::string Light::command(const std::string& name, const std::string& value) {
    forgetLastError();
    std::string reply;
    const std::uint32_t status = doExecute(name, value, reply);
    if (status != ORVEX_OK) {
        throw statusFailure(status, onPort(value.empty() ? name : name + " " + value), lastError());
    }
    if (!reply.empty() && reply.back() == '\r') {
        reply.pop_back();
    }
    fresh_ = fresh_ && name.rfind("Get", 0) == 0;
    note(name, value);
    return reply;
}

std::vector<int> Light::numbers(const std::string& name) {
    return requireNumbers(onPort(name), command(name), wavelengths().size());
}

const std::vector<int>& Light::wavelengths() {
    if (wavelengths_.empty() && !speaksLampCommands(model_)) {
        const std::string name = "GetWaveLengthLED";
        wavelengths_ = requireNumbers(onPort(name), command(name), 1);
        const auto end = std::find_if(wavelengths_.begin(), wavelengths_.end(),
                                      [](int wavelength) { return wavelength < 1; });
        wavelengths_.erase(end, wavelengths_.end());
    }
    return wavelengths_;
}

std::vector<int> Light::fittedPositions() {
    std::vector<int> positions;
    for (std::size_t k = 0; k < wavelengths().size(); ++k) {
        if (wavelengths_[k] != ORVEX_EMPTY_POSITION) {
            positions.push_back(static_cast<int>(k) + 1);
        }
    }
    return positions;
}

OrvexStruct Light::cachedRecord() {
    OrvexStruct record{};
    record.iSize = sizeof record;
    const std::uint32_t status = doRead(record);
    if (status != ORVEX_OK) {
        throw statusFailure(status, onPort("reading the state"), lastError());
    }
    return record;
}

OrvexStruct Light::record() {
    const bool current = std::exchange(fresh_, false);
    OrvexStruct record = cachedRecord();
    if (static_cast<std::size_t>(record.iNumChannels) != fittedPositions().size()) {
        throw Failure(
            ExitCode::deviceError,
            onPort("GetWaveLengthLED") + ": the device does not tell the same number of LEDs twice",
            "orvexctl doctor tells whether another program talks to it");
    }
    if (!current && record.iNumChannels > 0) {
        synchronise(record);
    }
    return record;
}

/// Brings the library's record to what the device tells, which may have been changed by commands or
/// by hand. The device is sent what it has already.
void Light::synchronise(OrvexStruct& record) {
    const std::vector<int> states = numbers("GetUnitStatus");
    const std::vector<int> intensities = numbers("GetIntensity");
    bool differs = false;
    std::size_t slot = 0;
    for (const int position : fittedPositions()) {
        const auto k = static_cast<std::size_t>(position) - 1;
        OrvexChannel& channel = record.aChannels[slot++];
        const bool stays = limitedIntensity(intensities[k], channel) == intensities[k];
        const int intensity = stays ? intensities[k] : channel.iIntensity;
        differs |= channel.iIntensity != intensity || channel.iState != states[k];
        channel.iIntensity = intensity;
        channel.iState = states[k];
    }
    if (differs) {
        apply(record);
        record = cachedRecord();
    }
}

void Light::apply(const OrvexStruct& record) {
    forgetLastError();
    const OrvexStruct before = cachedRecord();
    const std::uint32_t status = doWrite(record);
    fresh_ = false;
    note(before, cachedRecord());
    if (status != ORVEX_OK) {
        throw statusFailure(status, onPort("setting the state"), lastError());
    }
}

void Light::note(const std::string& command, const std::string& value) {
    if (command == "TurnLampOn" || command == "TurnLampOff") {
        switchedOn_.lamp = command == "TurnLampOn";
    } else if (command == "OpenShutter" || command == "CloseShutter") {
        switchedOn_.shutter = command == "OpenShutter";
    } else if (command == "TurnAllLedOff") {
        switchedOn_.positions.clear();
    } else if (command == "TurnAllLedOn" && value.empty()) {
        const std::vector<int> all = fittedPositions();
        switchedOn_.positions.insert(all.begin(), all.end());
    } else if (command == "TurnLedOn" || command == "TurnAllLedOn") {
        const std::vector<int> listed = parseNumbers(value);
        switchedOn_.positions.insert(listed.begin(), listed.end());
    } else if (command == "TurnLedOff") {
        for (const int position : parseNumbers(value)) {
            switchedOn_.positions.erase(position);
        }
    }
}

void Light::note(const OrvexStruct& before, const OrvexStruct& after) {
    std::size_t slot = 0;
    for (const int position : fittedPositions()) {
        const bool wasOn = (before.aChannels[slot].iState & 1) != 0;
        const bool isOn = (after.aChannels[slot].iState & 1) != 0;
        ++slot;
        if (isOn && !wasOn) {
            switchedOn_.positions.insert(position);
        } else if (!isOn) {
            switchedOn_.positions.erase(position);
        }
    }
}

void Light::switchOffAgain() {
    if (switchedOn_.shutter) {
        command("CloseShutter");
    }
    if (switchedOn_.lamp) {
        command("TurnLampOff");
    }
    if (!switchedOn_.positions.empty()) {
        const std::vector<int> positions(switchedOn_.positions.begin(),
                                         switchedOn_.positions.end());
        command("TurnLedOff", join(positions, ","));
    }
}

}  // namespace orvex::tools
