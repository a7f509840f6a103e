#include "log/hexstring.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

void* const kNull = nullptr;
void* pointer(std::uintptr_t address) {
    return reinterpret_cast<void*>(address);
}

TEST(HexstringOfAPointer, HasThePrefixOnce) {
    EXPECT_EQ(to_hexstring(pointer(0x5581ABCDEF10), true, false, false), "0x5581abcdef10");
    EXPECT_EQ(to_hexstring(kNull, true, false, false), "0x0");
}

TEST(HexstringOfAPointer, HasNoPrefixWhenNoneIsWanted) {
    EXPECT_EQ(to_hexstring(pointer(0x5581ABCDEF10), false, false, false), "5581abcdef10");
    EXPECT_EQ(to_hexstring(kNull, false, false, false), "0");
}

TEST(HexstringOfAPointer, HasLowerCaseDigitsAlways) {
    EXPECT_EQ(to_hexstring(pointer(0xABC), true, true, false), "0xabc");
    EXPECT_EQ(to_hexstring(pointer(0xABC), false, true, false), "abc");
    EXPECT_EQ(to_hexstring(pointer(0xABC), false, false, false), "abc");
}

TEST(HexstringOfAPointer, IsFilledInFrontOfItsOwnPrefix) {
    EXPECT_EQ(to_hexstring(pointer(0xABC), true, false, true),
              "0x"
              "00000000000"
              "0xabc");
    EXPECT_EQ(to_hexstring(pointer(0xABC), false, false, true),
              "00000000000"
              "0xabc");
    EXPECT_EQ(to_hexstring(kNull, true, false, true), "0x0000000000000000");
    EXPECT_EQ(to_hexstring(kNull, false, false, true), "0000000000000000");
}

TEST(HexstringOfAPointer, LosesASecondPrefixThatFillsTheWidth) {
    EXPECT_EQ(to_hexstring(pointer(0x12345678ABCDEF), true, false, true), "0x12345678abcdef");
    EXPECT_EQ(to_hexstring(pointer(0x12345678ABCDEF), false, false, true), "12345678abcdef");
}

TEST(HexstringOfAPointer, IsTheAddressOfATextNotTheText) {
    const char* const constant = reinterpret_cast<const char*>(0x1234ABCD);
    char* const variable = reinterpret_cast<char*>(0x1234ABCD);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(0x1234ABCD);
    EXPECT_EQ(to_hexstring(constant, true, false, false), "0x1234abcd");
    EXPECT_EQ(to_hexstring(variable, true, false, false), "0x1234abcd");
    EXPECT_EQ(to_hexstring(bytes, true, false, false), "0x1234abcd");
}

TEST(HexstringOfAnInteger, HasAPrefixWhenWanted) {
    EXPECT_EQ(to_hexstring(255, true, true, false), "0xff");
    EXPECT_EQ(to_hexstring(255, false, true, false), "ff");
    EXPECT_EQ(to_hexstring(0, true, true, false), "0x0");
    EXPECT_EQ(to_hexstring(0, false, true, false), "0");
}

TEST(HexstringOfAnInteger, HasUpperCaseDigitsUnlessLowerCaseIsWanted) {
    EXPECT_EQ(to_hexstring(0xABCDEFu, true, false, false), "0xABCDEF");
    EXPECT_EQ(to_hexstring(0xABCDEFu, true, true, false), "0xabcdef");
    EXPECT_EQ(to_hexstring(0xABCDEFu, false, false, false), "ABCDEF");
}

TEST(HexstringOfAnInteger, IsFilledToTwoDigitsAByte) {
    EXPECT_EQ(to_hexstring(std::uint8_t{0xA}, true, false, true), "0x0A");
    EXPECT_EQ(to_hexstring(std::uint16_t{0xA}, true, false, true), "0x000A");
    EXPECT_EQ(to_hexstring(std::uint32_t{0xA}, true, true, true), "0x0000000a");
    EXPECT_EQ(to_hexstring(std::uint64_t{0xA}, false, true, true), "000000000000000a");
    EXPECT_EQ(to_hexstring(std::uint32_t{0}, false, true, true), "00000000");
    EXPECT_EQ(to_hexstring(std::uint32_t{0x12345678}, true, true, true), "0x12345678");
}

TEST(HexstringOfAnInteger, IsANumberForOneByteTypes) {
    EXPECT_EQ(to_hexstring(std::int8_t{65}, true, false, false), "0x41");
    EXPECT_EQ(to_hexstring(std::uint8_t{200}, true, false, false), "0xC8");
    EXPECT_EQ(to_hexstring('A', true, false, false), "0x41");
    EXPECT_EQ(to_hexstring(true, true, false, false), "0x1");
    EXPECT_EQ(to_hexstring(false, true, false, true), "0x00");
}

TEST(HexstringOfAnInteger, ShowsTheBitsOfANegativeNumber) {
    EXPECT_EQ(to_hexstring(std::int8_t{-1}, true, true, false), "0xff");
    EXPECT_EQ(to_hexstring(std::int16_t{-2}, true, true, false), "0xfffe");
    EXPECT_EQ(to_hexstring(std::int32_t{-1}, true, false, false), "0xFFFFFFFF");
    EXPECT_EQ(to_hexstring(std::int64_t{-16}, true, false, false), "0xFFFFFFFFFFFFFFF0");
}

TEST(HexstringOfAnInteger, ShowsSixtyFourBits) {
    EXPECT_EQ(to_hexstring(std::uint64_t{0x0123456789ABCDEF}, true, true, false),
              "0x123456789abcdef");
    EXPECT_EQ(to_hexstring(std::numeric_limits<std::int64_t>::min(), false, true, true),
              "8000000000000000");
}

}  // namespace
