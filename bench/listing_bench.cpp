// A scan for devices against the listings of serial libraries of general purpose.
#include <libserialport.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/machine.h"
#include "bench/processors.h"
#include "bench/rounds.h"

using orvex_bench::Machine;
using orvex_bench::Rounds;

namespace {

struct PipeEnd {
    void operator()(FILE* pipe) const noexcept { ::pclose(pipe); }
};

void scanAgain(std::vector<std::uint64_t>& handles) {
    std::uint32_t found = 0;
    ORVEX_ScanDevices(handles.data(), static_cast<std::uint32_t>(handles.size()), &found);
    if (found != handles.size()) {
        throw std::runtime_error("devices are missing");
    }
}

/// Lists the ports and asks for what tells a light from other ports.
void listWithLibserialport(std::size_t wanted) {
    sp_port** ports = nullptr;
    if (sp_list_ports(&ports) != SP_OK) {
        throw std::runtime_error("sp_list_ports");
    }
    std::size_t found = 0;
    for (sp_port** port = ports; *port != nullptr; ++port) {
        int vendor = 0;
        int product = 0;
        const bool known = sp_get_port_usb_vid_pid(*port, &vendor, &product) == SP_OK;
        found += known && vendor == 0x04d8 && product == 0xea08 ? 1 : 0;
    }
    sp_free_port_list(ports);
    if (found != wanted) {
        throw std::runtime_error("libserialport finds " + std::to_string(found) + " devices");
    }
}

/// The processor time of one listing with pyserial, in a process of its own, in ns.
double pyserialListing(int devices, int rounds) {
    const std::string command = "LD_PRELOAD=" + orvex::sim::Testbed::preloadLibrary() +
                                " /usr/bin/python3 -B " BENCH_FOLDER "/pyserial_listing.py " +
                                std::to_string(devices) + " " + std::to_string(rounds);
    const std::unique_ptr<FILE, PipeEnd> pipe(::popen(command.c_str(), "r"));
    double spent = 0;
    if (!pipe || std::fscanf(pipe.get(), "%lf", &spent) != 1) {
        throw std::runtime_error("no answer from pyserial_listing.py");
    }
    return spent;
}

void listing(benchmark::State& state) {
    const auto devices = static_cast<int>(state.range(0));
    const auto wanted = static_cast<std::size_t>(devices);
    const int rounds = std::max(3, orvex_bench::roundsWanted() * 2 / (10 + devices / 8));
    ORVEX_SetLogBits(0);
    const Machine machine(devices);
    std::vector<std::uint64_t> handles(wanted);
    orvex_bench::stayOn(0);
    for (auto _ : state) {
        const Rounds contest({{"library", [&](int) { scanAgain(handles); }},
                              {"libserialport", [&](int) { listWithLibserialport(wanted); }}},
                             1, rounds);
        contest.tell(state);
        state.counters["pyserial_ratio"] = pyserialListing(devices, rounds) / contest.cpu(0);
    }
}
BENCHMARK(listing)->Arg(8)->Arg(64)->Arg(512)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
