// The pauses of a serial link, none of which is waited for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/connected_link.h"
#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"

using orvex_test::ConnectedLink;
using orvex_test::failureOf;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using std::chrono_literals::operator""ms;

namespace {

class PausingLink : public ConnectedLink {
  protected:
    SkippedPauses pauses_;
};

TEST_F(PausingLink, PausesTenMillisecondsToDisconnect) {
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_THAT(pauses_.asked, ElementsAre(10ms));
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_THAT(pauses_.asked, ElementsAre(10ms, 10ms));
}

TEST_F(PausingLink, PausesTheRemainingTimeAfterAnInterruption) {
    pauses_.during = [](std::size_t number) { return number < 3 ? 4ms : 0ms; };
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_THAT(pauses_.asked, ElementsAre(10ms, 4ms, 4ms));
}

TEST_F(PausingLink, PausesAfterEachVainAttemptToReceive) {
    link_.setTimeout(0);
    EXPECT_EQ(failureOf([&] { link_.recvChar(); }).first, 0xA0515019u);
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 200ms, 200ms));
}

TEST_F(PausingLink, ReceivesAtItsThirdAttempt) {
    link_.setTimeout(0);
    pauses_.during = [this](std::size_t number) {
        if (number == 2) {
            port_.answer("xy");
        }
        return 0ms;
    };
    EXPECT_EQ(link_.recvChar(), 'x');
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 200ms));
    EXPECT_EQ(port_.unread(), 1u);
}

TEST_F(PausingLink, PausesTheRemainingTimeBetweenAttempts) {
    link_.setTimeout(0);
    pauses_.during = [this](std::size_t number) {
        port_.answer(number == 2 ? "x" : "");
        return number == 1 ? 150ms : 0ms;
    };
    EXPECT_EQ(link_.recvChar(), 'x');
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 150ms));
}

}  // namespace
