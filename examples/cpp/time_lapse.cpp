// Time-lapse: an exposure every so often, with the light on for the exposure only.
//
//   c++ -std=c++17 time_lapse.cpp -o time_lapse $(pkg-config --cflags --libs qtr_orvex)
//   orvex-sim run --device Tamar -- ./time_lapse --frames 3              (without a device)
#include <cstdio>
#include <exception>
#include <sstream>

#include "../c/options.h"
#include "../c/stop_signals.h"
#include "light.h"

namespace {

constexpr char kUsage[] =
    "usage: time_lapse [--port PORT] [--wavelength-nm NM] [--exposure-ms MS] [--interval-ms MS]\n"
    "                  [--frames N]\n"
    "By default 10 exposures of 100 ms, one a second, with the first light found and the first of\n"
    "its LEDs (a lamp: its shutter), at the intensity that is set.\n";

// The position of an LED: commands count from 1, and empty positions too. nm 0: any LED.
std::string positionOf(Light& light, long nm) {
    std::istringstream wavelengths(light.command("GetWaveLengthLED"));
    std::string text;
    for (int position = 1; std::getline(wavelengths, text, ','); ++position) {
        const long fitted = std::strtol(text.c_str(), nullptr, 10);
        if (fitted != ORVEX_EMPTY_POSITION && (nm == 0 || fitted == nm)) {
            return std::to_string(position);
        }
    }
    throw std::runtime_error(light.port() + ": there is no LED of " + std::to_string(nm) +
                             " nm\n  try: find_and_list");
}

void takeFrames(Light& light, long nm, long frames, double exposure_s, double interval_s) {
    const std::string position = light.isLed() ? positionOf(light, nm) : "";
    const double start_s = seconds_now();
    for (long k = 0; k < frames && wait_until(start_s + static_cast<double>(k) * interval_s); ++k) {
        // Before switching on: when that fails, the request may have arrived all the same.
        DarkAtEnd dark(light);
        light.command(light.isLed() ? "TurnLedOn" : "OpenShutter", position);
        const double on_s = seconds_now();
        wait_until(on_s + exposure_s);  // The camera exposes here.
        dark.switchOff();
        std::printf("frame %ld of %ld at %.3f s: light on for %.1f ms\n", k + 1, frames,
                    on_s - start_s, (seconds_now() - on_s) * 1e3);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* port = nullptr;
    long nm = 0, exposure_ms = 100, interval_ms = 1000, frames = 10;
    const Option options[] = {{"--port", &port, nullptr, 0, 0},
                              {"--wavelength-nm", nullptr, &nm, 1, 9999},
                              {"--exposure-ms", nullptr, &exposure_ms, 1, 3600000},
                              {"--interval-ms", nullptr, &interval_ms, 1, 86400000},
                              {"--frames", nullptr, &frames, 1, 1000000},
                              {nullptr, nullptr, nullptr, 0, 0}};
    read_options(argc, argv, kUsage, options);
    hold_stop_signals();
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    ORVEX_SetLogBits(0);  // What fails is told by exceptions.
    try {
        Light light(port);
        takeFrames(light, nm, frames, static_cast<double>(exposure_ms) / 1e3,
                   static_cast<double>(interval_ms) / 1e3);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return exit_status();
}
