#include <gtest/gtest.h>

#include <array>
#include <climits>

#include "serial/serial_link.h"

namespace {

struct Rate {
    unsigned baud;
    unsigned constant;
};

constexpr std::array<Rate, 31> kRates = {{
    {0, 0x0},          {50, 0x1},         {75, 0x2},         {110, 0x3},        {134, 0x4},
    {150, 0x5},        {200, 0x6},        {300, 0x7},        {600, 0x8},        {1200, 0x9},
    {1800, 0xA},       {2400, 0xB},       {4800, 0xC},       {9600, 0xD},       {19200, 0xE},
    {38400, 0xF},      {57600, 0x1001},   {115200, 0x1002},  {230400, 0x1003},  {460800, 0x1004},
    {500000, 0x1005},  {576000, 0x1006},  {921600, 0x1007},  {1000000, 0x1008}, {1152000, 0x1009},
    {1500000, 0x100A}, {2000000, 0x100B}, {2500000, 0x100C}, {3000000, 0x100D}, {3500000, 0x100E},
    {4000000, 0x100F},
}};

TEST(ConvertBaudrate, MapsEveryKnownRateToItsConstant) {
    for (const Rate& rate : kRates) {
        EXPECT_EQ(convertBaudrate(rate.baud), rate.constant) << rate.baud;
    }
}

TEST(ConvertBaudrate, KnowsNoRateInBetween) {
    for (std::size_t i = 1; i < kRates.size(); ++i) {
        EXPECT_EQ(convertBaudrate(kRates[i].baud - 1), kRates[i - 1].constant) << kRates[i].baud;
    }
}

TEST(ConvertBaudrate, RoundsDown) {
    EXPECT_EQ(convertBaudrate(1), 0x0u);
    EXPECT_EQ(convertBaudrate(49), 0x0u);
    EXPECT_EQ(convertBaudrate(9599), 0xCu);
    EXPECT_EQ(convertBaudrate(9601), 0xDu);
    EXPECT_EQ(convertBaudrate(12345), 0xDu);
    EXPECT_EQ(convertBaudrate(115201), 0x1002u);
}

TEST(ConvertBaudrate, HoldsHigherRatesAtTheHighest) {
    EXPECT_EQ(convertBaudrate(4000001), 0x100Fu);
    EXPECT_EQ(convertBaudrate(UINT_MAX), 0x100Fu);
}

}  // namespace
