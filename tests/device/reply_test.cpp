#include "device/reply.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

using orvex::join;
using orvex::parseNumber;
using orvex::parseNumbers;
using orvex::split;
using orvex::tenfold;
using testing::ElementsAre;

namespace {

TEST(ParseNumber, ReadsADecimalNumber) {
    EXPECT_EQ(parseNumber("0"), 0);
    EXPECT_EQ(parseNumber("7"), 7);
    EXPECT_EQ(parseNumber("365"), 365);
    EXPECT_EQ(parseNumber("-12"), -12);
}

TEST(ParseNumber, ReadsLeadingZerosAsDecimal) {
    EXPECT_EQ(parseNumber("0042"), 42);
    EXPECT_EQ(parseNumber("010"), 10);
}

TEST(ParseNumber, StopsAtTheFirstOtherCharacter) {
    EXPECT_EQ(parseNumber("365\r"), 365);
    EXPECT_EQ(parseNumber("365nm"), 365);
    EXPECT_EQ(parseNumber("12.9"), 12);
    EXPECT_EQ(parseNumber("1e3"), 1);
    EXPECT_EQ(parseNumber("0x1F"), 0);
    EXPECT_EQ(parseNumber(std::string_view("1\0002", 3)), 1);
}

TEST(ParseNumber, StopsAtTheEndOfItsText) {
    EXPECT_EQ(parseNumber(std::string_view("1234").substr(0, 2)), 12);
}

TEST(ParseNumber, IsZeroWithoutDigits) {
    EXPECT_EQ(parseNumber(""), 0);
    EXPECT_EQ(parseNumber("\r"), 0);
    EXPECT_EQ(parseNumber("-"), 0);
    EXPECT_EQ(parseNumber("nm365"), 0);
}

TEST(ParseNumber, KeepsTheLargestAndTheSmallestNumber) {
    EXPECT_EQ(parseNumber("2147483647"), 2147483647);
    EXPECT_EQ(parseNumber("-2147483648"), -2147483647 - 1);
}

TEST(ParseNumber, ClampsWhatDoesNotFit) {
    EXPECT_EQ(parseNumber("2147483648"), 2147483647);
    EXPECT_EQ(parseNumber("-2147483649"), -2147483647 - 1);
    EXPECT_EQ(parseNumber("4294967301"), 2147483647);
    EXPECT_EQ(parseNumber("99999999999999999999999999"), 2147483647);
    EXPECT_EQ(parseNumber("-99999999999999999999999999"), -2147483647 - 1);
}

TEST(Tenfold, MultipliesByTen) {
    EXPECT_EQ(tenfold(0), 0);
    EXPECT_EQ(tenfold(4), 40);
    EXPECT_EQ(tenfold(-3), -30);
    EXPECT_EQ(tenfold(214748364), 2147483640);
}

TEST(Tenfold, ClampsWhatDoesNotFit) {
    EXPECT_EQ(tenfold(214748365), 2147483647);
    EXPECT_EQ(tenfold(-214748365), -2147483647 - 1);
    EXPECT_EQ(tenfold(2147483647), 2147483647);
}

TEST(Split, CutsAtEverySeparator) {
    EXPECT_THAT(split("365,470,525\r", ","), ElementsAre("365", "470", "525\r"));
}

TEST(Split, KeepsEmptyPieces) {
    EXPECT_THAT(split("UV,,RED", ","), ElementsAre("UV", "", "RED"));
    EXPECT_THAT(split(",UV,", ","), ElementsAre("", "UV", ""));
    EXPECT_THAT(split(",", ","), ElementsAre("", ""));
}

TEST(Split, FindsOnePieceWithoutASeparator) {
    EXPECT_THAT(split("UV", ","), ElementsAre("UV"));
    EXPECT_THAT(split("", ","), ElementsAre(""));
}

TEST(Split, TakesEachCharacterAsASeparator) {
    EXPECT_THAT(split("UV,RED\r", ",\r"), ElementsAre("UV", "RED", ""));
    EXPECT_THAT(split("UV\rRED", ",\r"), ElementsAre("UV", "RED"));
}

TEST(ParseNumbers, ReadsEveryPiece) {
    EXPECT_THAT(parseNumbers("365,999,470\r"), ElementsAre(365, 999, 470));
}

TEST(ParseNumbers, KeepsThePlacesOfPiecesWithoutDigits) {
    EXPECT_THAT(parseNumbers("1,,x,4\r"), ElementsAre(1, 0, 0, 4));
    EXPECT_THAT(parseNumbers("\r"), ElementsAre(0));
}

TEST(Join, PutsTheSeparatorBetweenNumbers) {
    EXPECT_EQ(join({1, 2, 3}, ","), "1,2,3");
    EXPECT_EQ(join({365, 999}, ", "), "365, 999");
    EXPECT_EQ(join({-5}, ","), "-5");
    EXPECT_EQ(join({0, 0}, ","), "0,0");
}

TEST(Join, IsEmptyWithoutNumbers) {
    EXPECT_EQ(join({}, ","), "");
}

}  // namespace
