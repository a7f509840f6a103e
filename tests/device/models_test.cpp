#include "device/models.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "device/light_device.h"
#include "tests/support/exceptions.h"
#include "tests/support/log_capture.h"

using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

/// The size of a table before main is entered.
const std::size_t kNamesAtStart = gl_type_names.size();
const std::size_t kCommandsAtStart = gl_cmd_willow.size();

TEST(Models, HaveTheirNumbers) {
    EXPECT_EQ(ORVEX_TYPE_ALDER, 0u);
    EXPECT_EQ(ORVEX_TYPE_BIRCH, 1u);
    EXPECT_EQ(ORVEX_TYPE_CEDAR, 2u);
    EXPECT_EQ(ORVEX_TYPE_HAZEL, 3u);
    EXPECT_EQ(ORVEX_TYPE_LARCH, 4u);
    EXPECT_EQ(ORVEX_TYPE_MAPLE, 5u);
    EXPECT_EQ(ORVEX_TYPE_ROWAN, 6u);
    EXPECT_EQ(ORVEX_TYPE_SPRUCE, 7u);
    EXPECT_EQ(ORVEX_TYPE_TAMAR, 8u);
    EXPECT_EQ(ORVEX_TYPE_WILLOW, 9u);
    EXPECT_EQ(ORVEX_TYPE_UNDEFINED, 65535u);
    static_assert(sizeof(OrvexType) == 4 && OrvexType(-1) > 0, "32 bits, unsigned");
}

TEST(Models, HaveTheirNames) {
    EXPECT_THAT(gl_type_names,
                UnorderedElementsAre(Pair(0u, "Alder"), Pair(1u, "Birch"), Pair(2u, "Cedar"),
                                     Pair(3u, "Hazel"), Pair(4u, "Larch"), Pair(5u, "Maple"),
                                     Pair(6u, "Rowan"), Pair(7u, "Spruce"), Pair(8u, "Tamar"),
                                     Pair(9u, "Willow"), Pair(65535u, "<Undefined Type>")));
}

TEST(Models, AreFoundByTwoUsbProducts) {
    EXPECT_THAT(gl_usb_pid_types, UnorderedElementsAre(Pair(0xEA02, 2u), Pair(0xEA08, 8u)));
}

TEST(Models, AreKnownBeforeTheProgramStarts) {
    EXPECT_EQ(kNamesAtStart, 11u);
    EXPECT_EQ(kCommandsAtStart, 76u);
}

TEST(Models, FromAlderToWillowMakeDevices) {
    const LogCapture lines;
    for (OrvexType type = 0; type <= 9; ++type) {
        EXPECT_EQ(LightDevice(type, "/dev/ttyACM0").getType(), type);
    }
}

TEST(Models, BeyondWillowMakeNoDevices) {
    const LogCapture lines;
    const Failure unknown = {0xA0515001u,
                             "DriverException (0xa0515001): Not implemented/unknown device type"};
    for (const OrvexType type : {10u, 65535u, 0xFFFFFFFFu}) {
        EXPECT_EQ(failureOf([&] { LightDevice(type, "/dev/ttyACM0"); }), unknown) << type;
    }
}

}  // namespace
