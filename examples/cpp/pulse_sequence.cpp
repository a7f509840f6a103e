// Lets several LEDs flash one after the other, timed by the device itself.
//
//   c++ -std=c++17 pulse_sequence.cpp -o pulse_sequence $(pkg-config --cflags --libs qtr_orvex)
//   orvex-sim run --device Willow -- ./pulse_sequence --model Willow --port /dev/ttyACM0
//
// Each LED has a delay, an on and an off time: the n-th one waits for n - 1 others, and is then off
// while they flash. Times are ticks; the device's manual tells the codes of --unit (how long a tick
// is) and --mode (how the sequence is triggered). LightDevice, the library's own class, opens
// models that a scan does not find.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <vector>

#include "../c/options.h"
#include "../c/stop_signals.h"
#include "open_device.h"

namespace {

constexpr char kUsage[] =
    "usage: pulse_sequence [--port PORT] [--model MODEL] [--wavelengths-nm NM,NM...]\n"
    "                      [--on-ticks N] [--gap-ticks N] [--advance-ticks N] [--unit CODE]\n"
    "                      [--mode CODE] [--run-ms MS]\n"
    "By default all LEDs of the first Tamar found, 100 ticks each with gaps of 50, for 2 s. A "
    "model\n"
    "that a scan does not find needs both --model and --port.\n";
constexpr long kLongestTicks = 99999;  // What the five digits of a time hold.

std::vector<long> numbersIn(const std::string& text) {
    std::istringstream stream(text);
    std::vector<long> numbers;
    for (std::string piece; std::getline(stream, piece, ',');) {
        numbers.push_back(std::strtol(piece.c_str(), nullptr, 10));
    }
    return numbers;
}

// For each position of the device the turn of its LED, from 1; 0: it does not flash.
std::vector<long> turnsOf(OpenDevice& device, const std::string& wavelengths) {
    const std::vector<long> fitted = numbersIn(device.ask("GetWaveLengthLED"));
    std::vector<long> turns(fitted.size());
    long turn = 0;
    for (std::size_t k = 0; wavelengths.empty() && k < fitted.size(); ++k) {
        turns[k] = fitted[k] != ORVEX_EMPTY_POSITION ? ++turn : 0;
    }
    for (const long nm : numbersIn(wavelengths)) {
        std::size_t k = 0;
        while (k < fitted.size() && (fitted[k] != nm || turns[k] != 0)) {
            ++k;
        }
        if (k == fitted.size() || nm == ORVEX_EMPTY_POSITION) {
            throw std::runtime_error(device.port() + ": no LED for " + std::to_string(nm) +
                                     " nm\n  try: find_and_list");
        }
        turns[k] = ++turn;
    }
    return turns;
}

class PulseGenerator {
  public:
    PulseGenerator(OpenDevice& device, std::vector<long> turns)
        : device_(device), turns_(std::move(turns)) {}
    PulseGenerator(const PulseGenerator&) = delete;
    PulseGenerator& operator=(const PulseGenerator&) = delete;
    ~PulseGenerator() {
        if (mayRun_) {
            try {
                stop();
            } catch (const std::exception& e) {
                std::fprintf(stderr, "%s\n", e.what());
            }
        }
    }

    // Sends a number for each position, first + step * (turn - 1), and checks what the device has.
    void set(const std::string& what, long first, long step = 0) {
        std::string value;
        for (const long turn : turns_) {
            value += (value.empty() ? "" : ",") +
                     std::to_string(turn == 0 ? 0 : first + step * (turn - 1));
        }
        device_.ask("Set" + what, value);
        const std::string reply = device_.ask("Get" + what);
        if (reply != value) {
            throw std::runtime_error(device_.port() + ": " + what + ": the device made " + reply +
                                     " of " + value + "\n  try: other times");
        }
        std::printf("%-18s %s\n", what.c_str(), reply.c_str());
    }
    void start() {
        mayRun_ = true;  // Also when starting fails: the request may have arrived.
        device_.ask("StartPWM");
        std::printf("running, status %s\n", device_.ask("StatusPWM").c_str());
    }
    // Stopped and dark, whatever went before: failed requests are repeated.
    void stop() {
        mayRun_ = false;
        const bool stopped = device_.insist("StopPWM");
        if (!device_.insist("TurnAllLedOff") || !stopped) {
            throw std::runtime_error(device_.port() + ": the light may still be on!");
        }
    }

  private:
    OpenDevice& device_;
    std::vector<long> turns_;
    bool mayRun_ = false;
};

struct Settings {
    const char *port = nullptr, *model = nullptr, *wavelengths = "";
    long on = 100, gap = 50, advance = 0, unit = -1, mode = -1, run_ms = 2000;
};

void run(OpenDevice& device, const Settings& settings) {
    std::vector<long> turns = turnsOf(device, settings.wavelengths);
    const long turn_ticks = settings.on + settings.gap;
    const long off_ticks = *std::max_element(turns.begin(), turns.end()) * turn_ticks - settings.on;
    if (off_ticks > kLongestTicks) {
        throw std::runtime_error(device.port() + ": an off time of " + std::to_string(off_ticks) +
                                 " ticks is too long\n  try: shorter times, or fewer LEDs");
    }
    PulseGenerator generator(device, std::move(turns));
    if (settings.unit >= 0) {
        generator.set("UnitsPWM", settings.unit);
    }
    generator.set("SignalDelayTime", 0, turn_ticks);
    generator.set("SignalOnTime", settings.on);
    generator.set("SignalOffTime", off_ticks);
    generator.set("TriggerAdvanceTime", settings.advance);
    if (settings.mode >= 0) {
        device.ask("SetGeneratorPulseMode", std::to_string(settings.mode));
    }
    generator.start();
    wait_until(seconds_now() + static_cast<double>(settings.run_ms) / 1e3);
    generator.stop();
}

}  // namespace

int main(int argc, char** argv) {
    Settings settings;
    const Option options[] = {{"--port", &settings.port, nullptr, 0, 0},
                              {"--model", &settings.model, nullptr, 0, 0},
                              {"--wavelengths-nm", &settings.wavelengths, nullptr, 0, 0},
                              {"--on-ticks", nullptr, &settings.on, 1, kLongestTicks},
                              {"--gap-ticks", nullptr, &settings.gap, 0, kLongestTicks},
                              {"--advance-ticks", nullptr, &settings.advance, 0, kLongestTicks},
                              {"--unit", nullptr, &settings.unit, 0, 9},
                              {"--mode", nullptr, &settings.mode, 0, 9},
                              {"--run-ms", nullptr, &settings.run_ms, 1, 86400000},
                              {nullptr, nullptr, nullptr, 0, 0}};
    read_options(argc, argv, kUsage, options);
    hold_stop_signals();
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    ORVEX_SetLogBits(0);  // What fails is told by exceptions.
    if (std::strspn(settings.wavelengths, "0123456789,") != std::strlen(settings.wavelengths)) {
        std::fprintf(stderr, "--wavelengths-nm: \"%s\" is no list\n%s", settings.wavelengths,
                     kUsage);
        return 2;
    }
    const bool any = settings.model == nullptr && settings.port == nullptr;
    try {
        OpenDevice device(any ? "Tamar" : settings.model, settings.port);
        run(device, settings);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
    return exit_status();
}
