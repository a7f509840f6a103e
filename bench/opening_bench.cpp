// How often opening and closing ask a device, and how long they pause, for each model.
#include <benchmark/benchmark.h>

#include "bench/open_light.h"

using orvex_bench::Calls;
using orvex_bench::calls;

namespace {

/// What the calls of a step are, beginning with its making.
class Step {
  public:
    void tell(benchmark::State& state, const std::string& name) const {
        const auto exchanges = static_cast<double>(calls().write - before_.write);
        state.counters[name + "_exchanges"] = exchanges;
        state.counters[name + "_flushes"] = static_cast<double>(calls().ioctl - before_.ioctl);
        state.counters[name + "_pauses"] = static_cast<double>(calls().pauses - before_.pauses);
        state.counters[name + "_paused_ms"] = calls().pausedFor - before_.pausedFor;
    }

  private:
    const Calls before_ = calls();
};

void opening(benchmark::State& state) {
    ORVEX_SetLogBits(0);
    orvex_bench::Light light(static_cast<OrvexType>(state.range(0)));
    for (auto _ : state) {
        const Step open;
        const bool isOpen = light.open() == ORVEX_OK;
        open.tell(state, "open");
        state.counters["opens"] = isOpen ? 1 : 0;
        const Step close;
        if (isOpen) {
            light.close();
        }
        close.tell(state, "close");
    }
}
BENCHMARK(opening)->DenseRange(ORVEX_TYPE_ALDER, ORVEX_TYPE_WILLOW)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
