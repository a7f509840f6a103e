// A device that fails at any one exchange of a program's use of it, in any of eight ways, once or
// from then on. Each test starts all of that at the same time, on devices of their own: waiting
// costs nothing.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/thread_log.h"
#include "tests/wire_faults/run.h"

namespace {

using orvex_test::FaultKind;
using orvex_test::Injection;
using orvex_test::Run;
using orvex_test::Scenario;
using orvex_test::SchedulingDelay;
using Runs = std::vector<std::unique_ptr<Run>>;

/// What one run is made of.
struct Plan {
    const Scenario* scenario;
    std::optional<Injection> injection;
};

std::size_t descriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

/// Every device has four descriptors and there are hundreds.
void allowManyDescriptors() {
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
}

/// Goes all the runs at the same time, and helps those that would not end.
void go(const Runs& runs) {
    std::atomic<std::size_t> ended{0};
    std::vector<std::thread> threads;
    for (const auto& run : runs) {
        threads.emplace_back([&ended, &run] {
            run->go();
            ++ended;
        });
    }
    while (ended != runs.size()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        for (const auto& run : runs) {
            run->helpToSettle();
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

struct Totals {
    std::size_t runs = 0;
    std::size_t faulty = 0;
    std::size_t calls = 0;
    std::size_t helped = 0;
    std::size_t repeated = 0;
};

/// @return the plans of those that were not in time
std::vector<Plan> goOnce(const std::vector<Plan>& plans, bool isLast, Totals& totals) {
    const SchedulingDelay delay;
    const orvex_test::ThreadLog log(LOG_BIT_ERROR | LOG_BIT_TRAFFIC);
    Runs runs;
    for (const Plan& plan : plans) {
        runs.push_back(std::make_unique<Run>(*plan.scenario, plan.injection, delay));
    }
    go(runs);
    std::vector<Plan> untimely;
    for (std::size_t k = 0; k < runs.size(); ++k) {
        const Run& run = *runs[k];
        for (const std::string& text : run.wrong()) {
            ADD_FAILURE() << text;
        }
        for (const std::string& text : run.untimely()) {
            EXPECT_FALSE(isLast) << text;
            std::printf("%s\n", text.c_str());
        }
        if (!run.untimely().empty()) {
            untimely.push_back(plans[k]);
        }
        totals.faulty += run.faultyExchanges();
        totals.calls += run.calls();
        totals.helped += run.wasHelped() ? 1 : 0;
    }
    totals.runs += runs.size();
    return untimely;
}

/// Runs that a busy machine may have held up are repeated.
Totals goAll(std::vector<Plan> plans) {
    constexpr int kRounds = 4;
    Totals totals;
    for (int round = 1; round <= kRounds && !plans.empty(); ++round) {
        totals.repeated += round > 1 ? plans.size() : 0;
        plans = goOnce(plans, round == kRounds, totals);
    }
    return totals;
}

enum class Family { lamps, leds };

const char* nameOf(Family family) {
    return family == Family::lamps ? "Lamps" : "Leds";
}

struct Slice {
    FaultKind kind;
    Family family;
};

std::string nameOf(const Slice& slice) {
    return std::string(nameOf(slice.kind)) + "Of" + nameOf(slice.family);
}

void PrintTo(const Slice& slice, std::ostream* out) {
    *out << nameOf(slice);
}

std::vector<Slice> allSlices() {
    std::vector<Slice> slices;
    for (const FaultKind kind : orvex_test::kFaultKinds) {
        slices.push_back({kind, Family::lamps});
        slices.push_back({kind, Family::leds});
    }
    return slices;
}

std::vector<Scenario> scenariosOf(Family family) {
    return family == Family::lamps ? orvex_test::lampScenarios() : orvex_test::ledScenarios();
}

class WireFaults : public testing::TestWithParam<Slice> {};

TEST_P(WireFaults, EndEveryCallAndLeaveTheDeviceUsable) {
    allowManyDescriptors();
    const auto [kind, family] = GetParam();
    const std::vector<Scenario> scenarios = scenariosOf(family);
    std::vector<Plan> plans;
    for (const Scenario& scenario : scenarios) {
        for (unsigned exchange = 1; exchange <= scenario.requests.size(); ++exchange) {
            plans.push_back({&scenario, Injection{kind, exchange, false}});
            plans.push_back({&scenario, Injection{kind, exchange, true}});
        }
    }
    const std::size_t before = descriptors();
    const Totals totals = goAll(plans);
    EXPECT_EQ(descriptors(), before);
    std::printf(
        "%zu scenarios, %zu faulty exchanges, %zu calls; %zu groups had to be helped to "
        "settle; %zu scenarios repeated for their time\n",
        plans.size(), totals.faulty, totals.calls, totals.helped, totals.repeated);
    EXPECT_GE(totals.faulty, plans.size());
    EXPECT_GE(plans.size(), family == Family::lamps ? 42U : 116U);
}

INSTANTIATE_TEST_SUITE_P(, WireFaults, testing::ValuesIn(allSlices()),
                         [](const auto& test) { return nameOf(test.param); });

TEST(WireWithoutFaults, IsAsTheScenariosSay) {
    const std::vector<Scenario> lamps = orvex_test::lampScenarios();
    const std::vector<Scenario> leds = orvex_test::ledScenarios();
    std::vector<Plan> plans;
    for (const auto* scenarios : {&lamps, &leds}) {
        for (const Scenario& scenario : *scenarios) {
            plans.push_back({&scenario, std::nullopt});
        }
    }
    const Totals totals = goAll(plans);
    EXPECT_EQ(totals.helped, 0U);
    EXPECT_GE(totals.runs, 5U);
}

}  // namespace
