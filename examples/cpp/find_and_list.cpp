// Finds all attached light sources and lists them with their LEDs.
//
//   c++ -std=c++17 find_and_list.cpp -o find_and_list $(pkg-config --cflags --libs qtr_orvex)
//   orvex-sim run --device Tamar --device Cedar -- ./find_and_list      (without a device)
#include <cstdio>
#include <exception>
#include <vector>

#include "../c/options.h"
#include "light.h"

namespace {

std::vector<std::uint64_t> findLights() {
    std::vector<std::uint64_t> handles(4);
    std::uint32_t found = 0;
    std::uint32_t status = ORVEX_ERR_BUFFER_TOO_SMALL;
    while (status == ORVEX_ERR_BUFFER_TOO_SMALL) {
        handles.resize(handles.size() * 2);
        const auto size = static_cast<std::uint32_t>(handles.size());
        status = ORVEX_ScanDevices(handles.data(), size, &found);
    }
    if (status != ORVEX_OK || found == 0) {
        throw LightError("any port", "finding lights",
                         status != ORVEX_OK ? status : ORVEX_ERR_NO_DEVICE);
    }
    handles.resize(found);  // The first scan of a program fills the slots from the first one on.
    return handles;
}

void listLeds(Light& light, const OrvexStruct& state) {
    const std::string serial = light.command("GetUnitSerialNumber");
    std::printf("%s on %s, serial number %s\n", state.szModelName, light.port().c_str(),
                serial.c_str());
    for (int k = 0; k < state.iNumChannels; ++k) {
        const OrvexChannel& led = state.aChannels[k];
        std::printf("  %4d nm  %-9s  %5.1f %% (%.1f to %.1f %%)  %d degrees C  %s\n",
                    led.iWavelength, led.szLedName, led.iIntensity / 10.0, led.iMinIntensity / 10.0,
                    led.iMaxIntensity / 10.0, led.iTemperature,
                    (led.iState & 1) != 0 ? "on" : "off");
    }
}

// A lamp's record has no channels; commands tell about it.
void listLamp(Light& light, const OrvexStruct& state) {
    const std::string serial = light.command("GetSerialNumber");
    const std::string hours = light.command("GetLampHours");
    const std::string percent = light.command("GetIntensity");
    std::printf("%s on %s, serial number %s\n", state.szModelName, light.port().c_str(),
                serial.c_str());
    std::printf("  lamp     %s h  %s %%\n", hours.c_str(), percent.c_str());
}

// Whether a light could be listed; the next one is listed in any case.
bool list(std::uint64_t handle) {
    try {
        Light light(handle);
        const OrvexStruct state = light.state();
        light.isLed() ? listLeds(light, state) : listLamp(light, state);
        return true;
    } catch (const LightError& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return false;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const Option options[] = {{nullptr, nullptr, nullptr, 0, 0}};
    read_options(argc, argv, "usage: find_and_list\nLists all attached lights.\n", options);
    ORVEX_SetLogBits(0);  // What fails is told by exceptions.
    try {
        bool allListed = true;
        for (const std::uint64_t handle : findLights()) {
            allListed = list(handle) && allListed;
        }
        return allListed ? 0 : 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
