// Several devices, each in a thread of its own.
#include <memory>
#include <thread>
#include <vector>

#include "bench/exchanges.h"
#include "bench/processors.h"

using orvex_bench::Contestant;
using orvex_bench::OpenTamar;
using orvex_bench::Rounds;

namespace {

using Lights = std::vector<std::unique_ptr<OpenTamar>>;

/// A contestant's call on every light at the same time.
template <typename Make>
Contestant onAll(const Lights& lights, const Make& contestantOn) {
    std::vector<Contestant> each;
    for (const auto& light : lights) {
        each.push_back(contestantOn(*light));
    }
    return {each.front().name, [each](int calls) {
                std::vector<std::thread> threads;
                for (std::size_t k = 0; k < each.size(); ++k) {
                    threads.emplace_back([&each, k, calls] {
                        orvex_bench::stayOn(static_cast<unsigned>(k));
                        each[k].run(calls);
                    });
                }
                for (std::thread& thread : threads) {
                    thread.join();
                }
            }};
}

Contestant quietOn(OpenTamar& light) {
    return {"library", [&light](int calls) {
                for (int k = 0; k < calls; ++k) {
                    orvex_bench::exchange(light.handle());
                }
            }};
}

/// A contestant's call with the log's default classes on.
Contestant logged(Contestant quiet) {
    return {"logging", [run = quiet.run](int calls) {
                ORVEX_SetLogBits(0x7F);
                run(calls);
                ORVEX_SetLogBits(0);
            }};
}

void compare(benchmark::State& state, bool inMemory) {
    Lights lights;
    for (int k = 0; k < state.range(0); ++k) {
        lights.push_back(std::make_unique<OpenTamar>(20, inMemory));
    }
    const Contestant quiet = onAll(lights, quietOn);
    for (auto _ : state) {
        const Rounds rounds(
            {onAll(lights, [](OpenTamar& light) { return orvex_bench::bare(light); }), quiet,
             logged(quiet)},
            inMemory ? 20'000 : 200, std::max(3, orvex_bench::roundsWanted() / 4));
        rounds.tell(state);
    }
}

/// Through the kernel; the far ends' share is part of the time.
void parallel(benchmark::State& state) {
    compare(state, false);
}
BENCHMARK(parallel)->RangeMultiplier(2)->Range(1, 8)->Iterations(1);

void parallelInMemory(benchmark::State& state) {
    compare(state, true);
}
BENCHMARK(parallelInMemory)->RangeMultiplier(2)->Range(1, 8)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
