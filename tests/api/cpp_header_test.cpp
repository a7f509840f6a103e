// The C header in a C++ program: before any other header, and twice.
#include "include/qtr_orvex.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace {

static_assert(std::is_same_v<decltype(ORVEX_ScanDevices),
                             std::uint32_t(std::uint64_t*, std::uint32_t, std::uint32_t*)>);
static_assert(
    std::is_same_v<decltype(ORVEX_OpenDevice),
                   std::uint32_t(std::uint64_t*, std::uint32_t, const char*, std::uint32_t)>);
static_assert(
    std::is_same_v<decltype(ORVEX_SwitchOrvex), std::uint32_t(std::uint64_t, bool, bool)>);
static_assert(std::is_same_v<OrvexLogCallback, void (*)(const char*)>);
static_assert(std::is_same_v<OrvexType, std::uint32_t>);
static_assert(std::is_standard_layout_v<OrvexStruct> && std::is_trivial_v<OrvexStruct>);

TEST(CppHeader, DeclaresCallsThatLink) {
    std::uint32_t major = 0;
    EXPECT_EQ(ORVEX_GetVersion(&major, nullptr, nullptr, nullptr), ORVEX_OK);
    EXPECT_EQ(major, 1u);
    EXPECT_EQ(ORVEX_GetDeviceInfo(1, nullptr, nullptr, 0, nullptr), ORVEX_ERR_NO_HANDLE);
}

TEST(CppHeader, HasARecordWithoutPadding) {
    EXPECT_EQ(sizeof(OrvexStruct), 2008u);
    EXPECT_EQ(sizeof(OrvexChannel), 116u);
    EXPECT_EQ(sizeof(OrvexStruct::aChannels), 1856u);
    EXPECT_EQ(sizeof(OrvexStruct::szModelName), 30u);
    EXPECT_EQ(sizeof(OrvexStruct::aiGroupSlot), 84u);
    EXPECT_EQ(sizeof(OrvexChannel::szLedName), 10u);
    EXPECT_EQ(sizeof(OrvexChannel::aiInfo), 64u);
}

}  // namespace
