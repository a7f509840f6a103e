#include "bench/rounds.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace orvex_bench {

namespace {

double nanoseconds(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

Times spentBy(const Contestant& contestant, int calls) {
    excluded() = {};
    const Times start = now();
    contestant.run(calls);
    const Times end = now();
    return {(end.cpu - start.cpu - excluded().cpu) / calls,
            (end.wall - start.wall - excluded().wall) / calls};
}

}  // namespace

Times now() {
    return {nanoseconds(CLOCK_THREAD_CPUTIME_ID), nanoseconds(CLOCK_MONOTONIC)};
}

void exclude(const std::function<void()>& run) {
    const Times start = now();
    run();
    const Times end = now();
    excluded().cpu += end.cpu - start.cpu;
    excluded().wall += end.wall - start.wall;
}

Times& excluded() {
    thread_local Times times;
    return times;
}

int roundsWanted() {
    const char* wanted = std::getenv("ORVEX_BENCH_ROUNDS");
    return wanted != nullptr ? std::max(1, std::atoi(wanted)) : 200;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Rounds::Rounds(std::vector<Contestant> contestants, int calls, int rounds)
    : contestants_(std::move(contestants)) {
    const std::size_t count = contestants_.size();
    for (const Contestant& contestant : contestants_) {
        contestant.run(calls);  // Warms up.
    }
    for (std::size_t round = 0; round < static_cast<std::size_t>(rounds); ++round) {
        Round times(count);
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t turn = (round + k) % count;
            times[turn] = spentBy(contestants_[turn], calls);
        }
        rounds_.push_back(std::move(times));
    }
}

double Rounds::median(const std::function<double(const Round&)>& value) const {
    std::vector<double> values;
    std::transform(rounds_.begin(), rounds_.end(), std::back_inserter(values), value);
    return orvex_bench::median(std::move(values));
}

double Rounds::cpu(std::size_t contestant) const {
    return median([=](const Round& round) { return round[contestant].cpu; });
}

double Rounds::wall(std::size_t contestant) const {
    return median([=](const Round& round) { return round[contestant].wall; });
}

double Rounds::ratio(std::size_t contestant, std::size_t base) const {
    return median([=](const Round& round) { return round[contestant].cpu / round[base].cpu; });
}

double Rounds::wallRatio(std::size_t contestant, std::size_t base) const {
    return median([=](const Round& round) { return round[contestant].wall / round[base].wall; });
}

double Rounds::added(std::size_t contestant, std::size_t base) const {
    return median([=](const Round& round) { return round[contestant].cpu - round[base].cpu; });
}

void Rounds::tell(benchmark::State& state) const {
    for (std::size_t k = 0; k < contestants_.size(); ++k) {
        const std::string& name = contestants_[k].name;
        state.counters[name + "_cpu_ns"] = cpu(k);
        state.counters[name + "_wall_ns"] = wall(k);
        if (k > 0) {
            state.counters[name + "_ratio"] = ratio(k);
            state.counters[name + "_wall_ratio"] = wallRatio(k);
            state.counters[name + "_added_ns"] = added(k);
        }
    }
}

}  // namespace orvex_bench
