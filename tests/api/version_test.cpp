#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/api_log.h"
#include "tests/support/c_api.h"

namespace {

using orvex_test::api;

TEST(Version, IsOneOneZeroOne) {
    std::uint32_t major = 77;
    std::uint32_t minor = 77;
    std::uint32_t release = 77;
    std::uint32_t build = 77;
    EXPECT_EQ(api().GetVersion(&major, &minor, &release, &build), 0u);
    EXPECT_EQ(major, 1u);
    EXPECT_EQ(minor, 1u);
    EXPECT_EQ(release, 0u);
    EXPECT_EQ(build, 1u);
}

TEST(Version, SkipsNullPointers) {
    EXPECT_EQ(api().GetVersion(nullptr, nullptr, nullptr, nullptr), 0u);
    std::uint32_t major = 77;
    EXPECT_EQ(api().GetVersion(&major, nullptr, nullptr, nullptr), 0u);
    EXPECT_EQ(major, 1u);
    std::uint32_t minor = 77;
    EXPECT_EQ(api().GetVersion(nullptr, &minor, nullptr, nullptr), 0u);
    EXPECT_EQ(minor, 1u);
    std::uint32_t release = 77;
    EXPECT_EQ(api().GetVersion(nullptr, nullptr, &release, nullptr), 0u);
    EXPECT_EQ(release, 0u);
    std::uint32_t build = 77;
    EXPECT_EQ(api().GetVersion(nullptr, nullptr, nullptr, &build), 0u);
    EXPECT_EQ(build, 1u);
}

TEST(Version, IsNotLogged) {
    orvex_test::ApiLog log(0xFFFFFFFF);
    EXPECT_EQ(api().GetVersion(nullptr, nullptr, nullptr, nullptr), 0u);
    EXPECT_TRUE(log.take().empty());
}

}  // namespace
