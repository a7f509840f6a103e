// The log cannot be written: no call ends otherwise for it, and later lines are written.
#include <gmock/gmock.h>

#include <iostream>

#include "tests/faults/expected_lines.h"
#include "tests/faults/sweep.h"

namespace {

using namespace orvex_faults;
using ::testing::IsEmpty;

struct Slice {
    Setting setting;
    Span span;
    std::size_t atLeast;
};

std::string nameOf(const Slice& slice) {
    return nameOf(slice.setting) + (slice.span == Span::Once ? "Once" : "SameCallForEver");
}

[[maybe_unused]] void PrintTo(const Slice& slice, std::ostream* out) {
    *out << nameOf(slice);
}

void expectSameStatuses(const Result& result, const Result& untouched) {
    ASSERT_EQ(result.outcomes.size(), untouched.outcomes.size());
    for (std::size_t k = 0; k < result.outcomes.size(); ++k) {
        const Outcome& outcome = result.outcomes[k];
        EXPECT_EQ(outcome.step, untouched.outcomes[k].step);
        EXPECT_EQ(outcome.status, untouched.outcomes[k].status) << nameOf(outcome.step);
        EXPECT_FALSE(outcome.outOfMemory || outcome.otherException) << nameOf(outcome.step);
    }
}

class SinkFaults : public ::testing::TestWithParam<Slice> {
  protected:
    void inject(const Plan& plan, const Result& untouched) {
        SCOPED_TRACE(std::string(nameOf(untouched.calls[plan.call].call)) + " as call " +
                     std::to_string(plan.call) + ": " + nameOf(plan.fault) + ", " +
                     nameOf(plan.span));
        const Result result = runOnce(GetParam().setting, plan);
        injections_.add();
        EXPECT_THAT(result.events, ::testing::Not(IsEmpty()));
        expectSameStatuses(result, untouched);
        if (plan.span == Span::Once) {
            EXPECT_GE(result.lines.size() + 1, untouched.lines.size());
            EXPECT_LE(result.lines.size(), untouched.lines.size());
        }
        EXPECT_TRUE(std::cout.good());
        EXPECT_TRUE(std::cerr.good());
    }

    Injections injections_{GetParam().atLeast};
};

TEST_P(SinkFaults, LoseTheLineAlone) {
    const Result untouched = runOnce(GetParam().setting, {});
    for (std::size_t k = 0; k < untouched.calls.size() && !HasFailure(); ++k) {
        const Call call = untouched.calls[k].call;
        if (!servesLog(call)) {
            continue;
        }
        for (const Fault& fault : faultsOf(call)) {
            Plan plan;
            plan.call = k;
            plan.fault = fault;
            plan.span = GetParam().span;
            inject(plan, untouched);
        }
    }
}

TEST(SinkFaultsOfThrowingStreams, StayInTheLog) {
    const Setting setting{cedar(), Usage::Whole, LogTo::Output};
    const Result untouched = runOnce(setting, {});
    Plan plan;
    plan.always = Call::SinkWrite;
    for (std::ostream* stream : {&std::cout, &std::cerr}) {
        stream->exceptions(std::ios::badbit);
    }
    const Result result = runOnce(setting, plan);
    for (std::ostream* stream : {&std::cout, &std::cerr}) {
        stream->exceptions(std::ios::goodbit);
    }
    EXPECT_GE(result.events.size(), untouched.lines.size());
    expectSameStatuses(result, untouched);
}

std::vector<Slice> slices() {
    std::vector<Slice> all;
    for (const Span span : {Span::Once, Span::SameCall}) {
        for (const LogTo log : {LogTo::File, LogTo::Output}) {
            all.push_back({{cedar(), Usage::Whole, log}, span, 300});
            all.push_back({{fourLedTamar(), Usage::Whole, log}, span, 430});
        }
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Slices, SinkFaults, ::testing::ValuesIn(slices()),
                         [](const auto& slice) { return nameOf(slice.param); });

}  // namespace
