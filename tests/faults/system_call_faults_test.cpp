// Every system call of the library that serves a device fails, in every plausible way.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/faults/expected_lines.h"
#include "tests/faults/sweep.h"

namespace {

using namespace orvex_faults;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

struct Slice {
    Setting setting;
    Span span;
    std::size_t atLeast;
};

std::string nameOf(const Slice& slice) {
    constexpr const char* kSpans[] = {"Once", "SameCallForEver", "EveryCallForEver"};
    return nameOf(slice.setting) + kSpans[static_cast<std::size_t>(slice.span)];
}

[[maybe_unused]] void PrintTo(const Slice& slice, std::ostream* out) {
    *out << nameOf(slice);
}

std::string describe(const Plan& plan, Call call) {
    return std::string(nameOf(call)) + " as call " + std::to_string(plan.call) + ": " +
           nameOf(plan.fault) + ", " + nameOf(plan.span);
}

void expectNoExceptions(const Result& result) {
    for (const Outcome& outcome : result.outcomes) {
        EXPECT_FALSE(outcome.outOfMemory) << nameOf(outcome.step);
        EXPECT_FALSE(outcome.otherException) << nameOf(outcome.step);
        EXPECT_TRUE(isKnownStatus(outcome.status)) << nameOf(outcome.step) << outcome.status;
    }
}

void expectOneFailure(const Result& result, bool isLogged) {
    ASSERT_EQ(result.events.size(), 1u);
    const Event& event = result.events.front();
    for (const Outcome& outcome : result.outcomes) {
        EXPECT_EQ(outcome.status, outcome.step == event.step ? statusOf(event) : 0u)
            << nameOf(outcome.step);
    }
    const Lines expected = isLogged ? errorLinesOf(event, result.port) : Lines{};
    EXPECT_THAT(errorLines(result.lines), ElementsAreArray(expected));
}

/// "Error: … Error 5 from read: …".
bool tellsOfSystemError(const std::string& line) {
    const std::size_t number = line.find(" Error ");
    return number != std::string::npos && line.find(" from ", number) != std::string::npos;
}

/// The failed calls are logged in their order, and no others.
void expectLinesOfAll(const Result& result) {
    Lines expected;
    for (const Event& event : result.events) {
        const auto line = lineOf(event);
        if (line && tellsOfSystemError(*line)) {
            expected.push_back(*line);
        }
    }
    Lines told;
    std::copy_if(result.lines.begin(), result.lines.end(), std::back_inserter(told),
                 tellsOfSystemError);
    EXPECT_THAT(told, ElementsAreArray(expected));
}

class SystemCallFaults : public ::testing::TestWithParam<Slice> {
  protected:
    void inject(const Plan& plan, Call call) {
        SCOPED_TRACE(describe(plan, call));
        const Result result = runOnce(GetParam().setting, plan);
        injections_.add();
        expectNoExceptions(result);
        const LogTo log = GetParam().setting.log;
        if (log == LogTo::Nowhere) {
            EXPECT_THAT(result.lines, IsEmpty());
        }
        if (plan.span == Span::Once) {
            expectOneFailure(result, log != LogTo::Nowhere);
        } else if (log == LogTo::Callback) {
            expectLinesOfAll(result);
        }
    }

    Injections injections_{GetParam().atLeast};
};

TEST_P(SystemCallFaults, EndInAStatusAndALogLine) {
    const Result untouched = runOnce(GetParam().setting, {});
    EXPECT_THAT(errorLines(untouched.lines), IsEmpty());
    for (const Outcome& outcome : untouched.outcomes) {
        ASSERT_EQ(outcome.status, 0u) << nameOf(outcome.step);
    }
    const bool isListed = !GetParam().setting.light.product.empty();
    for (std::size_t k = 0; k < untouched.calls.size() && !HasFailure(); ++k) {
        const Call call = untouched.calls[k].call;
        if (servesLog(call) || (call == Call::Udev && !isListed)) {
            continue;
        }
        for (const Fault& fault : faultsOf(call)) {
            Plan plan;
            plan.call = k;
            plan.fault = fault;
            plan.span = GetParam().span;
            inject(plan, call);
        }
    }
}

std::vector<Slice> slices() {
    std::vector<Slice> all;
    for (const Span span : {Span::Once, Span::SameCall, Span::EveryCall}) {
        all.push_back({{alder()}, span, 121});
        all.push_back({{cedar()}, span, 217});
        all.push_back({{fourLedTamar()}, span, 704});
        all.push_back({{groupedTamar()}, span, 1231});
        all.push_back({{willow()}, span, 2151});
        all.push_back({{cedar(), Usage::PulledOut}, span, 156});
        all.push_back({{fourLedTamar(), Usage::PulledOut}, span, 595});
        for (const LogTo log : {LogTo::Nowhere, LogTo::File, LogTo::Output}) {
            all.push_back({{cedar(), Usage::Whole, log}, span, 217});
        }
        all.push_back({{cedar(), Usage::Whole, LogTo::Callback, true}, span, 217});
        all.push_back({{cedar(), Usage::Whole, LogTo::Callback, false, true}, span, 221});
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Slices, SystemCallFaults, ::testing::ValuesIn(slices()),
                         [](const auto& slice) { return nameOf(slice.param); });

}  // namespace
