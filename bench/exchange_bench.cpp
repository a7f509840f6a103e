// One exchange through the exported call against the system calls it cannot do without.
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <stdexcept>

#include "bench/allocations.h"
#include "bench/open_light.h"
#include "bench/other_system_calls.h"
#include "bench/processors.h"
#include "bench/rounds.h"

using orvex_bench::Light;
using orvex_bench::Rounds;

namespace {

constexpr int kCalls = 64;

std::size_t receivedByCallback = 0;

void receiveLine(const char* line) {
    receivedByCallback += line[0] != '\0' ? 1 : 0;
}

/// A Tamar that has been opened and now answers everything with a reply of so many bytes.
class OpenTamar : public Light {
  public:
    explicit OpenTamar(std::size_t replyLength, bool inMemory) : Light(ORVEX_TYPE_TAMAR) {
        ORVEX_SetLogBits(0);
        ORVEX_RegisterLogCallback(receiveLine);
        ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
        if (open() != ORVEX_OK) {
            throw std::runtime_error("the device cannot be opened");
        }
        line().replyWith(orvex_bench::replyOf(replyLength));
        line().keepInMemory(inMemory);
    }
};

/// Flush, write, one read per byte: what an exchange must ask of the kernel.
void exchangeBare(int port, char* reply) {
    ::ioctl(port, TCFLSH, TCIOFLUSH);
    if (::write(port, "ip?\r", 4) != 4) {
        throw std::runtime_error("write");
    }
    while (::read(port, reply, 1) == 1 && *reply++ != '\r') {
    }
}

orvex_bench::Contestant bare(OpenTamar& light) {
    return {"floor", [&light](int calls) {
                std::array<char, 128> reply{};
                for (int k = 0; k < calls; ++k) {
                    exchangeBare(light.line().descriptor(), reply.data());
                }
            }};
}

orvex_bench::Contestant library(OpenTamar& light, const char* name, std::uint32_t bits) {
    return {name, [&light, bits](int calls) {
                std::array<char, 128> reply{};
                ORVEX_SetLogBits(bits);
                for (int k = 0; k < calls; ++k) {
                    if (ORVEX_ExecuteCommand(light.handle(), "GetIntensity", reply.data(),
                                             reply.size()) != ORVEX_OK) {
                        throw std::runtime_error("an exchange has failed");
                    }
                }
                ORVEX_SetLogBits(0);
            }};
}

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
