// Intensities of a written record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::cacheOf;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::ReadOut;
using orvex_test::slotsOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// LEDs at positions 0, 2 and 3 of four, at 100, 300 and 400.
ReadOut withAGap() {
    ReadOut readOut;
    readOut.wavelengths = "365,999,470,525\r";
    return readOut;
}

class Intensities : public testing::Test {
  protected:
    /// Writes one slot's intensity. @return what is stored
    std::int32_t write(int slot, std::int32_t intensity) {
        OrvexStruct record = light_.record();
        record.aChannels[slot].iIntensity = intensity;
        light_.device.setOVStruct(record);
        return light_.record().aChannels[slot].iIntensity;
    }

    OpenLight light_{ORVEX_TYPE_TAMAR, withAGap()};
};

TEST_F(Intensities, AreSentForAllPositions) {
    EXPECT_EQ(write(1, 350), 350);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("ip=100,200,350,400\r"));
}

TEST_F(Intensities, AreSentTogether) {
    OrvexStruct record = light_.record();
    record.aChannels[0].iIntensity = 150;
    record.aChannels[2].iIntensity = 999;
    light_.device.setOVStruct(record);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("ip=150,200,300,990\r"));
}

TEST_F(Intensities, AreRoundedDownToTheStep) {
    EXPECT_EQ(write(0, 157), 150);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("ip=150,200,300,400\r"));
}

TEST_F(Intensities, AreHeldWithinTheLimits) {
    EXPECT_EQ(write(0, 1001), 1000);
    EXPECT_EQ(write(0, 2147483647), 1000);
    EXPECT_EQ(write(0, 49), 50);
    EXPECT_EQ(write(1, 0), 70);
    EXPECT_EQ(write(2, -500), 80);
}

TEST_F(Intensities, FollowTheLimitsOfTheirChannel) {
    OrvexChannel& channel = cacheOf(light_.device).aChannels[0];
    channel.iIntensityStep = 5;
    channel.iMinIntensity = 10;
    channel.iMaxIntensity = 50;
    EXPECT_EQ(write(0, 57), 50);
    EXPECT_EQ(write(0, 7), 10);
    EXPECT_EQ(write(0, 34), 30);
    channel.iIntensityStep = 0;
    EXPECT_EQ(write(0, 34), 34);
}

TEST_F(Intensities, IgnoreTheLimitsOfTheWrittenRecord) {
    OrvexStruct record = light_.record();
    record.aChannels[0].iIntensity = 57;
    record.aChannels[0].iIntensityStep = 1;
    record.aChannels[0].iMinIntensity = 0;
    record.aChannels[0].iMaxIntensity = 5;
    light_.device.setOVStruct(record);
    EXPECT_EQ(light_.record().aChannels[0].iIntensity, 50);
}

TEST_F(Intensities, AreSentAlsoWhenTheyAreLimitedToWhatTheyWere) {
    EXPECT_EQ(write(0, 105), 100);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("ip=100,200,300,400\r"));
}

TEST_F(Intensities, AreLogged) {
    const LogCapture log;
    write(0, 150);
    EXPECT_THAT(log.lines(), ElementsAre("LightDevice::executeString: SetIntensity",
                                         "Send [ip=150,200,300,400*] ->", " <-Received [ok*]"));
}

TEST_F(Intensities, GoOutBeforeStates) {
    OrvexStruct record = light_.record();
    record.aChannels[0].iIntensity = 150;
    record.aChannels[0].iState = 1;
    light_.device.setOVStruct(record);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("ip=150,200,300,400\r", "of=2,3,4\r", "on=1\r"));
}

TEST_F(Intensities, StayStoredWhenTheyAreRefused) {
    light_.refuse("SetIntensity");
    OrvexStruct record = light_.record();
    record.iDeviceInfo = 9;
    record.aChannels[0].iIntensity = 150;
    record.aChannels[0].iState = 1;
    EXPECT_EQ(failureOf([&] { light_.device.setOVStruct(record); }),
              Failure(0x80515003,
                      "DriverException (0x80515003): LightDevice::executeString: Command "
                      "\"ip=150,200,300,400\" answered with error \"e\\r\""));
    EXPECT_THAT(light_.takeRequests(), ElementsAre("ip=150,200,300,400\r"));
    EXPECT_EQ(light_.record().iDeviceInfo, 9U);
    EXPECT_EQ(light_.record().aChannels[0].iIntensity, 150);
    EXPECT_EQ(light_.record().aChannels[0].iState, 1);
    light_.device.setOVStruct(record);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
}

TEST(SpruceIntensities, GoBehindTheDevicesNotation) {
    OpenLight light(ORVEX_TYPE_SPRUCE);
    OrvexStruct record = light.record();
    record.aChannels[0].iIntensity = 100;
    light.device.setOVStruct(record);
    EXPECT_THAT(light.takeRequests(), ElementsAre("ip=wwww,xxxx,yyyy,zzzz0,0,0,0\r"))
        << "nothing is known of its limits";
}

// Records of lamps have no slots; what a lamp is sent for one is kept all the same.
class LampIntensities : public testing::TestWithParam<OrvexType> {
  protected:
    LampIntensities() {
        slotsOf(light_.device).push_back(0);
        cacheOf(light_.device).aChannels[0].iIntensity = 20;
    }

    void write(std::int32_t intensity) {
        OrvexStruct record = light_.record();
        record.aChannels[0].iIntensity = intensity;
        light_.device.setOVStruct(record);
    }

    OpenLight light_{GetParam()};
};

using BasicLampIntensities = LampIntensities;
TEST_P(BasicLampIntensities, AreSentDividedByTen) {
    write(37);
    write(999);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("i3\r", "i4\r"));
}
INSTANTIATE_TEST_SUITE_P(Alder, BasicLampIntensities, testing::Values(ORVEX_TYPE_ALDER));

using ExtendedLampIntensities = LampIntensities;
TEST_P(ExtendedLampIntensities, AreSentDividedByTen) {
    write(637);
    write(1001);
    EXPECT_THAT(light_.takeRequests(), ElementsAre("d63\r", "d100\r"));
}
INSTANTIATE_TEST_SUITE_P(BirchToMaple, ExtendedLampIntensities,
                         testing::Range(ORVEX_TYPE_BIRCH, ORVEX_TYPE_ROWAN));

}  // namespace
