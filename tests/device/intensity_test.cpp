#include "device/intensity.h"

#include <gtest/gtest.h>

using orvex::limitedIntensity;

namespace {

OrvexChannel channel(int minimum, int maximum, int step) {
    OrvexChannel made{};
    made.iMinIntensity = minimum;
    made.iMaxIntensity = maximum;
    made.iIntensityStep = step;
    return made;
}

TEST(LimitedIntensity, RoundsDownToTheStep) {
    EXPECT_EQ(limitedIntensity(57, channel(0, 1000, 10)), 50);
    EXPECT_EQ(limitedIntensity(59, channel(0, 1000, 10)), 50);
    EXPECT_EQ(limitedIntensity(60, channel(0, 1000, 10)), 60);
}

TEST(LimitedIntensity, RoundsTowardZero) {
    EXPECT_EQ(limitedIntensity(-57, channel(-1000, 1000, 10)), -50);
}

TEST(LimitedIntensity, TakesAnyValueWithoutAStep) {
    EXPECT_EQ(limitedIntensity(57, channel(0, 1000, 0)), 57);
}

TEST(LimitedIntensity, HoldsToTheUpperLimit) {
    EXPECT_EQ(limitedIntensity(57, channel(10, 50, 5)), 50);
    EXPECT_EQ(limitedIntensity(2147483647, channel(10, 50, 5)), 50);
    EXPECT_EQ(limitedIntensity(51, channel(10, 50, 0)), 50);
}

TEST(LimitedIntensity, HoldsToTheLowerLimit) {
    EXPECT_EQ(limitedIntensity(7, channel(10, 50, 5)), 10);
    EXPECT_EQ(limitedIntensity(-2147483647 - 1, channel(10, 50, 5)), 10);
    EXPECT_EQ(limitedIntensity(9, channel(10, 50, 0)), 10);
}

TEST(LimitedIntensity, KeepsTheLimitsThemselves) {
    EXPECT_EQ(limitedIntensity(10, channel(10, 50, 5)), 10);
    EXPECT_EQ(limitedIntensity(50, channel(10, 50, 5)), 50);
}

TEST(LimitedIntensity, DoesNotRoundALimit) {
    EXPECT_EQ(limitedIntensity(90, channel(0, 55, 10)), 55);
    EXPECT_EQ(limitedIntensity(19, channel(12, 50, 10)), 12);
}

TEST(LimitedIntensity, LetsTheLowerLimitWin) {
    EXPECT_EQ(limitedIntensity(40, channel(50, 30, 0)), 50);
}

}  // namespace
