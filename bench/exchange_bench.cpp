// One exchange through the exported call against the system calls it cannot do without.
#include "bench/allocations.h"
#include "bench/exchanges.h"
#include "bench/other_system_calls.h"
#include "bench/processors.h"
#include "bench/rounds.h"

using orvex_bench::bare;
using orvex_bench::library;
using orvex_bench::OpenTamar;
using orvex_bench::Rounds;

namespace {

constexpr int kCalls = 64;

void compare(benchmark::State& state, bool inMemory) {
    OpenTamar light(static_cast<std::size_t>(state.range(0)), inMemory);
    orvex_bench::stayOn(0);
    const orvex_bench::BusyProcessor other(1);
    for (auto _ : state) {
        const Rounds rounds(
            {bare(light), library(light, "library", 0), library(light, "logging", 0x7F)},
            inMemory ? 16 * kCalls : kCalls);
        rounds.tell(state);
    }
}

/// Through the kernel.
void exchange(benchmark::State& state) {
    compare(state, false);
}
BENCHMARK(exchange)->Arg(5)->Arg(60)->Iterations(1)->Unit(benchmark::kMillisecond);

/// The same with the port's calls answered in user space.
void exchangeInMemory(benchmark::State& state) {
    compare(state, true);
}
BENCHMARK(exchangeInMemory)->Arg(5)->Arg(60)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Calls on the port, other system calls and allocations of one exchange in the steady state.
void exchangeCounts(benchmark::State& state) {
    OpenTamar light(static_cast<std::size_t>(state.range(0)), true);
    const auto count = [&state](const orvex_bench::Contestant& contestant) {
        contestant.run(1);
        const std::size_t before = orvex_bench::calls().onPort();
        const auto allocated = orvex_bench::allocationsOf([&] { contestant.run(kCalls); });
        const std::size_t onPort = orvex_bench::calls().onPort() - before;
        state.counters[contestant.name + "_port_calls"] = static_cast<double>(onPort) / kCalls;
        state.counters[contestant.name + "_allocations"] =
            static_cast<double>(allocated.count) / kCalls;
        state.counters[contestant.name + "_other_calls"] =
            static_cast<double>(orvex_bench::otherSystemCalls([&] { contestant.run(kCalls); })) /
            kCalls;
    };
    for (auto _ : state) {
        count(bare(light));
        count(library(light, "library", 0));
        count(library(light, "logging", 0x7F));
    }
}
BENCHMARK(exchangeCounts)->Arg(5)->Arg(60)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
