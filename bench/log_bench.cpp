// Log lines against what their contract demands, and against a logger of good repute.
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <mutex>
#include <utility>

#include "bench/log_floors.h"
#include "bench/processors.h"
#include "bench/rounds.h"
#include "log/log.h"

using orvex_bench::Contestant;
using orvex_bench::Rounds;

namespace {

const std::string kMessage = "LightDevice::executeString: GetIntensity";

template <typename Call>
Contestant repeated(std::string name, Call call) {
    return {std::move(name), [call](int calls) {
                for (int k = 0; k < calls; ++k) {
                    call();
                }
            }};
}

/// The library's and the other logger's lines to one destination, which a floor reaches directly.
void compare(benchmark::State& state, int method, const std::function<void()>& floor,
             std::unique_ptr<spdlog::logger> other, int calls) {
    ORVEX_SetLogMode(method);
    ORVEX_SetLogBits(0x7F);
    orvex_bench::stayOn(0);
    for (auto _ : state) {
        const Rounds rounds(
            {repeated("floor", floor), repeated("log", [] { log(LOG_BIT_INFO, kMessage); }),
             repeated("Logger", [] { Logger(LOG_BIT_INFO) << kMessage; }),
             repeated("spdlog", [&other] { other->info(kMessage); })},
            calls);
        rounds.tell(state);
    }
    ORVEX_SetLogBits(0);
}

/// A line of a disabled class through each entry.
void disabledLine(benchmark::State& state) {
    ORVEX_SetLogBits(0);
    orvex_bench::stayOn(0);
    const auto other = orvex_bench::loggerInto(std::make_shared<orvex_bench::FileLine>(""));
    other->set_level(spdlog::level::off);
    for (auto _ : state) {
        const Rounds rounds(
            {repeated("mask_test",
                      [] {
                          bool enabled = (gl_log_bits & LOG_BIT_INFO) != 0;
                          benchmark::DoNotOptimize(enabled);
                      }),
             repeated("log", [] { log(LOG_BIT_INFO, kMessage); }),
             repeated("logerr", [] { logerr(kMessage); }),
             repeated("clog", [] { clog(LOG_BIT_INFO, "port: %s", "/dev/ttyACM0"); }),
             repeated("Logger", [] { Logger(LOG_BIT_INFO) << kMessage; }),
             repeated("spdlog", [&other] { other->info(kMessage); })},
            10'000);
        rounds.tell(state);
    }
}
BENCHMARK(disabledLine)->Iterations(1)->Unit(benchmark::kMillisecond);

void fileLine(benchmark::State& state) {
    const orvex_bench::TemporaryFile file;
    ORVEX_SetLogFile(file.path().c_str());
    compare(
        state, LOG_METHOD_FILE, [&file] { orvex_bench::appendLine(file.path().c_str(), kMessage); },
        orvex_bench::loggerInto(std::make_shared<orvex_bench::FileLine>(file.path())), 100);
}
BENCHMARK(fileLine)->Iterations(1)->Unit(benchmark::kMillisecond);

void callbackLine(benchmark::State& state) {
    ORVEX_RegisterLogCallback(orvex_bench::receive);
    compare(
        state, LOG_METHOD_CALLBACK, [] { orvex_bench::callUnderLock(LOG_BIT_INFO, kMessage); },
        orvex_bench::loggerInto(std::make_shared<orvex_bench::CallbackLine>()), 10'000);
}
BENCHMARK(callbackLine)->Iterations(1)->Unit(benchmark::kMillisecond);

void standardOutputLine(benchmark::State& state) {
    const orvex_bench::TemporaryFile file;
    const orvex_bench::StandardOutputInto redirected(file.path().c_str());
    compare(
        state, LOG_METHOD_STDOUT, [] { orvex_bench::printLine(kMessage); },
        orvex_bench::loggerInto(std::make_shared<orvex_bench::StandardOutputLine>()), 100);
}
BENCHMARK(standardOutputLine)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
