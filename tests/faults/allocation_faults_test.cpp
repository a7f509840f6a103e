// Every allocation of the library fails.
//
// What must hold: std::bad_alloc is all that leaves a call; a call that has opened or closed the
// device does not fail afterwards; a log line without memory is lost and changes nothing else.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>

#include "tests/faults/expected_lines.h"
#include "tests/faults/sweep.h"

namespace {

using namespace orvex_faults;
using ::testing::IsEmpty;

struct Slice {
    Setting setting;
    bool forEver;
    std::optional<Call> alsoFailing;  ///< The calls of this kind always fail, too.
    std::size_t atLeast;
};

std::string nameOf(const Slice& slice) {
    std::string name = nameOf(slice.setting) + (slice.forEver ? "ForEver" : "Once");
    if (slice.alsoFailing) {
        const std::string call = nameOf(*slice.alsoFailing);
        name += "And";
        std::copy_if(call.begin(), call.end(), std::back_inserter(name),
                     [](char c) { return c != ' '; });
        name += "Fails";
    }
    return name;
}

[[maybe_unused]] void PrintTo(const Slice& slice, std::ostream* out) {
    *out << nameOf(slice);
}

/// Handles are others in every run: hexadecimal digits behind "0x" or "<".
std::string withoutHandles(const std::string& line) {
    std::string text;
    bool isHandle = false;
    for (const char c : line) {
        isHandle = isHandle && std::isxdigit(static_cast<unsigned char>(c)) != 0;
        if (!isHandle) {
            text += c;
        }
        isHandle = isHandle || c == 'x' || c == '<';
    }
    return text;
}

Lines withoutHandles(const Lines& lines) {
    Lines texts;
    for (const std::string& line : lines) {
        texts.push_back(withoutHandles(line));
    }
    return texts;
}

/// All lines are among the others, in the same order if wanted.
void expectSomeOf(const Lines& lines, const Lines& others, bool isInOrder) {
    auto place = others.begin();
    for (const std::string& line : lines) {
        place = std::find(isInOrder ? place : others.begin(), others.end(), line);
        ASSERT_NE(place, others.end()) << "not logged otherwise: " << line;
        ++place;
    }
}

/// The device is open once, or closed and without its port; nothing in between, but half-open after
/// an opening that has failed.
void expectConsistent(const Outcome& outcome) {
    SCOPED_TRACE(nameOf(outcome.step));
    EXPECT_FALSE(outcome.otherException);
    EXPECT_TRUE(isKnownStatus(outcome.status));
    const bool failed = outcome.outOfMemory || outcome.status != ORVEX_OK;
    EXPECT_LE(outcome.openDescriptors, 1u);
    switch (outcome.step) {
        case Step::Open:
            EXPECT_EQ(outcome.openCount, failed ? 0u : 1u);
            break;
        case Step::OpenAgain:
            EXPECT_EQ(outcome.openCount, failed ? 1u : 2u);
            break;
        case Step::Close:
            EXPECT_FALSE(outcome.outOfMemory);
            EXPECT_EQ(outcome.openCount, 0u);
            EXPECT_EQ(outcome.openDescriptors, 0u);
            break;
        case Step::Scan:
            EXPECT_EQ(outcome.openCount, 0u);
            EXPECT_EQ(outcome.openDescriptors, 0u);
            break;
        case Step::Unplug:
            if (!outcome.outOfMemory) {
                EXPECT_FALSE(outcome.isRegistered);
                EXPECT_EQ(outcome.openDescriptors, 0u);
            }
            break;
        default:
            EXPECT_EQ(outcome.openCount, 1u);
            EXPECT_EQ(outcome.openDescriptors, 1u);
    }
}

class AllocationFaults : public ::testing::TestWithParam<Slice> {
  protected:
    Plan plan(std::size_t allocation) const {
        Plan plan;
        plan.allocation = allocation;
        plan.allAllocations = GetParam().forEver;
        plan.always = GetParam().alsoFailing;
        return plan;
    }

    /// @return whether an allocation has failed
    bool inject(std::size_t allocation, const Result& untouched) {
        SCOPED_TRACE("allocation " + std::to_string(allocation) +
                     (GetParam().forEver ? " and all later ones" : ""));
        const Result result = runOnce(GetParam().setting, plan(allocation));
        if (result.failedAllocations == 0) {
            return false;
        }
        injections_.add();
        for (const Outcome& outcome : result.outcomes) {
            expectConsistent(outcome);
        }
        if (!GetParam().alsoFailing) {
            expectNothingElse(result, untouched);
        }
        return true;
    }

    /// No failure but for want of memory, and no line that is not logged otherwise.
    void expectNothingElse(const Result& result, const Result& untouched) {
        for (const Outcome& outcome : result.outcomes) {
            EXPECT_EQ(outcome.status, ORVEX_OK) << nameOf(outcome.step);
        }
        const auto failed =
            std::count_if(result.outcomes.begin(), result.outcomes.end(),
                          [](const Outcome& outcome) { return outcome.outOfMemory; });
        EXPECT_TRUE(failed <= 1 || GetParam().forEver);
        // What a failed call leaves to be done comes later: finding the device, awaiting a group.
        expectSomeOf(withoutHandles(result.lines), untouched.lines, failed == 0);
    }

    Injections injections_{GetParam().atLeast};
};

TEST_P(AllocationFaults, EndInBadAllocOrALostLine) {
    static_cast<void>(runOnce(GetParam().setting, plan(kNever)));  // Fills what is kept for good.
    Result untouched = runOnce(GetParam().setting, plan(kNever));
    untouched.lines = withoutHandles(untouched.lines);
    ASSERT_EQ(untouched.failedAllocations, 0u);
    std::size_t allocation = 0;
    while (!HasFailure() && inject(allocation, untouched)) {
        ++allocation;
    }
}

// How many allocations there are depends on the compiler and its library a little.
std::vector<Slice> slices() {
    std::vector<Slice> all;
    for (const bool forEver : {false, true}) {
        all.push_back({{alder()}, forEver, std::nullopt, 80});
        all.push_back({{cedar()}, forEver, std::nullopt, 125});
        all.push_back({{fourLedTamar()}, forEver, std::nullopt, 280});
        all.push_back({{unwillingTamar()}, forEver, std::nullopt, 280});
        all.push_back({{groupedTamar()}, forEver, std::nullopt, 320});
        all.push_back({{cedar(), Usage::PulledOut}, forEver, std::nullopt, 100});
        all.push_back({{cedar(), Usage::Whole, LogTo::Nowhere}, forEver, std::nullopt, 80});
        all.push_back({{cedar(), Usage::Whole, LogTo::File}, forEver, std::nullopt, 125});
        all.push_back({{cedar(), Usage::Whole, LogTo::Output}, forEver, std::nullopt, 125});
        for (const Call call : {Call::Open, Call::GetSettings, Call::SetSettings, Call::Discard,
                                Call::Write, Call::Read, Call::Close}) {
            all.push_back({{cedar()}, forEver, call, 75});
        }
        all.push_back({{cedar()}, forEver, Call::Udev, 5});
        for (const Call call : {Call::Close, Call::SinkWrite}) {
            all.push_back({{cedar(), Usage::PulledOut, LogTo::File}, forEver, call, 105});
        }
        all.push_back({{cedar(), Usage::PulledOut}, forEver, Call::Close, 100});
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Slices, AllocationFaults, ::testing::ValuesIn(slices()),
                         [](const auto& slice) { return nameOf(slice.param); });

}  // namespace
