/// @file
/// Comparing calls by running them in turn.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

namespace orvex_bench {

/// A moment, or a span, in nanoseconds.
struct Times {
    double cpu = 0;  ///< The calling thread's processor time.
    double wall = 0;
};

[[nodiscard]] Times now();

/// Runs something at nobody's cost.
void exclude(const std::function<void()>& run);

/// Time that the measuring itself took in this thread since its start; it counts for nobody.
Times& excluded();

struct Contestant {
    std::string name;
    std::function<void(int calls)> run;
};

/// How many rounds a comparison has: ORVEX_BENCH_ROUNDS, or 200.
[[nodiscard]] int roundsWanted();

/// Times of several contestants. In each round all of them run once, each time in another order, so
/// that what else the machine does meets all alike; what is told are medians over the rounds.
class Rounds {
  public:
    /// @param calls how often a contestant's call is made in one round
    Rounds(std::vector<Contestant> contestants, int calls, int rounds = roundsWanted());

    /// Processor time of one call.
    [[nodiscard]] double cpu(std::size_t contestant) const;
    [[nodiscard]] double wall(std::size_t contestant) const;
    /// One contestant's processor time in terms of another's in the same round.
    [[nodiscard]] double ratio(std::size_t contestant, std::size_t base = 0) const;
    [[nodiscard]] double wallRatio(std::size_t contestant, std::size_t base = 0) const;
    /// What one call takes more processor time than another's in the same round.
    [[nodiscard]] double added(std::size_t contestant, std::size_t base = 0) const;

    /// Puts the times of all contestants, and their ratios to the first, into a state's counters.
    void tell(benchmark::State& state) const;

  private:
    using Round = std::vector<Times>;

    [[nodiscard]] double median(const std::function<double(const Round&)>& value) const;

    std::vector<Contestant> contestants_;
    std::vector<Round> rounds_;
};

/// The value in the middle.
[[nodiscard]] double median(std::vector<double> values);

}  // namespace orvex_bench
