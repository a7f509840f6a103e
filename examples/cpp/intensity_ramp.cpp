// Ramps the intensity of one LED, or of a lamp, evenly from one value to another.
//
//   c++ -std=c++17 intensity_ramp.cpp -o intensity_ramp $(pkg-config --cflags --libs qtr_orvex)
//   orvex-sim run --device Tamar -- ./intensity_ramp --duration-ms 2000     (without a device)
//
// At the end the light is off, and has the intensity that it had before.
#include <cstdio>
#include <exception>

#include "../c/options.h"
#include "../c/stop_signals.h"
#include "light.h"

namespace {

constexpr char kUsage[] =
    "usage: intensity_ramp [--port PORT] [--wavelength-nm NM] [--from-percent P] [--to-percent P]\n"
    "                      [--duration-ms MS] [--steps N]\n"
    "By default from 10 to 100 % in 5 s and 20 steps, with the first light found and the first of\n"
    "its LEDs. A device holds intensities within its limits and rounds them to its steps.\n";

// What is dimmed: an LED by its slot in the record, a lamp by commands. In tenths of a per cent.
// At the end of its scope it has the intensity that it had before.
class Dimmer {
  public:
    Dimmer(Light& light, long nm) : light_(light), state_(light.state()) {
        while (light.isLed() && slot_ < state_.iNumChannels && nm != 0 &&
               state_.aChannels[slot_].iWavelength != nm) {
            ++slot_;
        }
        if (light.isLed() && slot_ >= state_.iNumChannels) {
            throw std::runtime_error(light.port() + ": no LED of " + std::to_string(nm) +
                                     " nm\n  try: find_and_list");
        }
        before_ = intensity();
    }
    Dimmer(const Dimmer&) = delete;
    Dimmer& operator=(const Dimmer&) = delete;
    ~Dimmer() {
        try {
            restore();
        } catch (const std::exception& e) {
            std::fprintf(stderr, "%s\n", e.what());
        }
    }
    // Now; a failure is thrown.
    void restore() {
        if (isChanged_) {
            isChanged_ = false;
            setTenths(before_);
        }
    }

    [[nodiscard]] long intensity() {
        return light_.isLed()
                   ? state_.aChannels[slot_].iIntensity
                   : 10 * std::strtol(light_.command("GetIntensity").c_str(), nullptr, 10);
    }
    void setIntensity(long tenths) {
        isChanged_ = true;
        setTenths(tenths);
    }
    void switchOn() {
        if (!light_.isLed()) {
            light_.command("OpenShutter");
            return;
        }
        for (int k = 0; k < state_.iNumChannels; ++k) {
            state_.aChannels[k].iState = k == slot_ ? 1 : 0;
        }
        light_.apply(state_);  // Of a group's LED this waits until the group has settled, 2 s.
    }

  private:
    void setTenths(long tenths) {
        if (!light_.isLed()) {
            light_.command("SetIntensity", std::to_string(tenths / 10));
            return;
        }
        state_.aChannels[slot_].iIntensity = static_cast<std::int32_t>(tenths);
        light_.apply(state_);
        state_ = light_.state();  // Held within the limits and rounded.
    }

    Light& light_;
    OrvexStruct state_;
    int slot_ = 0;
    long before_ = 0;
    bool isChanged_ = false;
};

void ramp(Dimmer& dimmer, long from, long to, double duration_s, long steps) {
    const double start_s = seconds_now();
    for (long k = 1; k <= steps; ++k) {
        if (!wait_until(start_s +
                        duration_s * static_cast<double>(k) / static_cast<double>(steps))) {
            return;
        }
        dimmer.setIntensity(from + (to - from) * k / steps);
        std::printf("%.3f s: %.1f %%\n", seconds_now() - start_s,
                    static_cast<double>(dimmer.intensity()) / 10.0);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* port = nullptr;
    long nm = 0, from = 10, to = 100, duration_ms = 5000, steps = 20;
    const Option options[] = {{"--port", &port, nullptr, 0, 0},
                              {"--wavelength-nm", nullptr, &nm, 1, 9999},
                              {"--from-percent", nullptr, &from, 0, 100},
                              {"--to-percent", nullptr, &to, 0, 100},
                              {"--duration-ms", nullptr, &duration_ms, 1, 86400000},
                              {"--steps", nullptr, &steps, 1, 1000000},
                              {nullptr, nullptr, nullptr, 0, 0}};
    read_options(argc, argv, kUsage, options);
    hold_stop_signals();
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    ORVEX_SetLogBits(0);  // What fails is told by exceptions.
    try {
        Light light(port);
        Dimmer dimmer(light, nm);
        DarkAtEnd dark(light);
        dimmer.setIntensity(10 * from);
        dimmer.switchOn();
        ramp(dimmer, 10 * from, 10 * to, static_cast<double>(duration_ms) / 1e3, steps);
        dark.switchOff();
        dimmer.restore();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return exit_status();
}
