// The list of devices alone: what a scan does beside asking udev.
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "api/device_registry.h"
#include "bench/listed_ports.h"
#include "bench/processors.h"
#include "bench/rounds.h"
#include "discovery/port_discovery.h"

using orvex_bench::Rounds;

namespace {

void scan(std::vector<std::uint64_t>& handles) {
    std::uint32_t found = 0;
    if (ORVEX_ScanDevices(handles.data(), static_cast<std::uint32_t>(handles.size()), &found) !=
            ORVEX_OK ||
        found != handles.size()) {
        throw std::runtime_error("devices are missing");
    }
}

/// Per device, without the mapping: registration in the first scan, and a later scan.
void registry(benchmark::State& state) {
    const auto devices = static_cast<std::size_t>(state.range(0));
    ORVEX_SetLogBits(0);
    orvex_bench::listPorts(devices);
    std::vector<std::uint64_t> handles(devices);
    const auto forget = [&handles] {
        gl_devs.clear();
        std::fill(handles.begin(), handles.end(), 0);
    };
    orvex_bench::stayOn(0);
    for (auto _ : state) {
        const Rounds rounds({{"mapping", [](int) { benchmark::DoNotOptimize(getComMapping()); }},
                             {"first",
                              [&](int) {
                                  orvex_bench::exclude(forget);
                                  scan(handles);
                              }},
                             {"repeated",
                              [&](int) {
                                  orvex_bench::exclude([&] {
                                      forget();
                                      scan(handles);
                                  });
                                  scan(handles);
                              }}},
                            1, std::max(3, orvex_bench::roundsWanted() / 8));
        const auto count = static_cast<double>(devices);
        state.counters["first_ns_per_device"] = rounds.added(1) / count;
        state.counters["repeated_ns_per_device"] = rounds.added(2) / count;
    }
    gl_devs.clear();
}
BENCHMARK(registry)->RangeMultiplier(8)->Range(8, 4096)->Iterations(1);

/// Memory that the heap holds more for each registered device.
void memoryOfDevices(benchmark::State& state) {
    const auto devices = static_cast<std::size_t>(state.range(0));
    ORVEX_SetLogBits(0);
    orvex_bench::listPorts(devices);
    std::vector<std::uint64_t> handles(devices);
    for (auto _ : state) {
        const std::size_t before = ::mallinfo2().uordblks;
        scan(handles);
        state.counters["bytes_per_device"] =
            static_cast<double>(::mallinfo2().uordblks - before) / static_cast<double>(devices);
    }
    gl_devs.clear();
}
BENCHMARK(memoryOfDevices)->Arg(512)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
