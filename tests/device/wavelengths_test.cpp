// A device's channels, as its wavelengths tell them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::cacheOf;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::ReadOut;
using orvex_test::slotsOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

ReadOut withWavelengths(const std::string& wavelengths) {
    ReadOut readOut;
    readOut.wavelengths = wavelengths;
    return readOut;
}

/// A device that has read out these wavelengths.
class Fitted : public Light {
  public:
    explicit Fitted(const std::string& wavelengths)
        : Light(ORVEX_TYPE_TAMAR, withWavelengths(wavelengths)) {
        open();
    }

    std::vector<std::int32_t> wavelengths() { return fieldOf(&OrvexChannel::iWavelength); }
    std::vector<std::int32_t> groups() { return fieldOf(&OrvexChannel::iGroup); }
    /// The positions of a record's slots.
    std::vector<std::int32_t> slots() { return slotsOf(device); }

  private:
    std::vector<std::int32_t> fieldOf(std::int32_t OrvexChannel::*field) {
        const OrvexStruct& cache = cacheOf(device);
        std::vector<std::int32_t> values;
        for (std::int32_t k = 0; k < cache.iNumChannels; ++k) {
            values.push_back(cache.aChannels[k].*field);
        }
        return values;
    }
};

const std::string kSixteen = "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16";

TEST(Wavelengths, MakeTheChannels) {
    Fitted light("365,470,525\r");
    EXPECT_THAT(light.wavelengths(), ElementsAre(365, 470, 525));
    EXPECT_THAT(light.slots(), ElementsAre(0, 1, 2));
    EXPECT_THAT(light.groups(), ElementsAre(0, 0, 0));
    EXPECT_EQ(light.record().iCapabilities, 16U);
    EXPECT_EQ(light.record().iExtendedChannels, 0);
}

TEST(Wavelengths, MarkPositionsWithoutAnLed) {
    Fitted light("365,999,470,999\r");
    EXPECT_THAT(light.wavelengths(), ElementsAre(365, 999, 470, 999));
    EXPECT_THAT(light.slots(), ElementsAre(0, 2));
    EXPECT_THAT(light.groups(), ElementsAre(0, 0, 0, 0));
    const OrvexStruct record = light.record();
    EXPECT_EQ(record.iNumChannels, 2);
    EXPECT_EQ(record.iCapabilities, 16U);
    EXPECT_EQ(record.aChannels[0].iWavelength, 365);
    EXPECT_EQ(record.aChannels[1].iWavelength, 470);
}

TEST(Wavelengths, MayAllBeMissing) {
    Fitted light("999,999\r");
    EXPECT_THAT(light.wavelengths(), ElementsAre(999, 999));
    EXPECT_THAT(light.slots(), IsEmpty());
    EXPECT_EQ(light.record().iNumChannels, 0);
}

TEST(Wavelengths, EndBelowOne) {
    EXPECT_THAT(Fitted("365,0,470\r").wavelengths(), ElementsAre(365));
    EXPECT_THAT(Fitted("365,-5,470\r").wavelengths(), ElementsAre(365));
    EXPECT_THAT(Fitted("365,1,470\r").wavelengths(), ElementsAre(365, 1, 470));
}

TEST(Wavelengths, EndAtAPieceWithoutDigits) {
    EXPECT_THAT(Fitted("365,,470\r").wavelengths(), ElementsAre(365));
    EXPECT_THAT(Fitted("365,nm,470\r").wavelengths(), ElementsAre(365));
    EXPECT_THAT(Fitted("365,470,\r").wavelengths(), ElementsAre(365, 470));
}

TEST(Wavelengths, AreTheLeadingNumbers) {
    EXPECT_THAT(Fitted("365nm,0470,99999999999\r").wavelengths(),
                ElementsAre(365, 470, 2147483647));
}

TEST(Wavelengths, MayBeNone) {
    for (const char* reply : {"0\r", "\r", "-1,365\r", "none\r"}) {
        Light light(ORVEX_TYPE_TAMAR, withWavelengths(reply));
        const LogCapture log(0x2);
        light.open();
        const auto lines = log.lines();
        EXPECT_THAT(lines, Contains("LightDevice:initDevice: Orvex Tamar has 0 channels: []"));
        EXPECT_THAT(lines, Contains("LightDevice:initDevice: LED states: []"));
        EXPECT_EQ(light.record().iNumChannels, 0);
        EXPECT_EQ(light.record().iUnitStatus, 0);
        light.port.clearRecord();
        light.device.switchInternalOff();
        EXPECT_THAT(light.takeRequests(), ElementsAre("of=\r"));
    }
}

TEST(Groups, NeedFiveLeds) {
    EXPECT_THAT(Fitted("1,2,3,4\r").groups(), ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(Fitted("1,2,3,4,5\r").groups(), ElementsAre(0, 0, 0, 1, 1));
    EXPECT_THAT(Fitted("1,2,3,4,999,999\r").groups(), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST(Groups, ContainTheFourthToSeventhLed) {
    EXPECT_THAT(Fitted("1,2,3,4,5,6,7,8,9\r").groups(), ElementsAre(0, 0, 0, 1, 1, 1, 1, 0, 0));
}

TEST(Groups, CountOnlyFittedLeds) {
    EXPECT_THAT(Fitted("1,999,2,3,4,999,5,6\r").groups(), ElementsAre(0, 0, 0, 0, 1, 0, 1, 1));
}

TEST(Groups, AreReadAnew) {
    Fitted light("1,2,3,4,5\r");
    light.port.replyWith("GetWaveLengthLED", "1,2,999,4,5\r");
    light.device.initDevice();
    EXPECT_THAT(light.groups(), ElementsAre(0, 0, 0, 0, 0));
    EXPECT_THAT(light.slots(), ElementsAre(0, 1, 3, 4));
    light.port.replyWith("GetWaveLengthLED", "999,2,3,4,5,6\r");
    light.device.initDevice();
    EXPECT_THAT(light.groups(), ElementsAre(0, 0, 0, 0, 1, 1));
}

TEST(ExtendedChannels, AreEightPositionsOrMore) {
    Fitted light("1,2,3,4,5,6,7,8\r");
    EXPECT_EQ(light.record().iCapabilities, 0x30U);
    EXPECT_EQ(light.record().iExtendedChannels, 1);
    EXPECT_THAT(light.groups(), ElementsAre(0, 0, 0, 1, 1, 1, 1, 0));
}

TEST(ExtendedChannels, CountPositionsWithoutAnLed) {
    Fitted light("1,999,3,4,999,999,999,999\r");
    EXPECT_EQ(light.record().iCapabilities, 0x30U);
    EXPECT_EQ(light.record().iExtendedChannels, 1);
    EXPECT_THAT(light.groups(), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(ExtendedChannels, AreNotSevenPositions) {
    Fitted light("1,2,3,4,5,6,7\r");
    EXPECT_EQ(light.record().iCapabilities, 0x10U);
    EXPECT_EQ(light.record().iExtendedChannels, 0);
}

TEST(Wavelengths, MayBeSixteen) {
    Fitted light(kSixteen + "\r");
    EXPECT_EQ(light.record().iNumChannels, 16);
    EXPECT_EQ(light.record().aChannels[15].iWavelength, 16);
    light.port.clearRecord();
    light.device.switchInternalOff();
    EXPECT_THAT(light.takeRequests(), ElementsAre("of=" + kSixteen + "\r"));
}

TEST(Wavelengths, AreTooManyFromSeventeenOn) {
    for (const char* more : {",17\r", ",999\r", ",0\r", ",17,18,19\r"}) {
        Light light(ORVEX_TYPE_WILLOW, withWavelengths(kSixteen + more));
        const LogCapture log(0x3);
        EXPECT_EQ(
            failureOf([&] { light.open(); }),
            Failure(0x80515020, "DriverException (0x80515020): ORVEX_MAX_CHANNEL is exceeded!"))
            << more;
        EXPECT_THAT(log.lines(), ElementsAre("LightDevice::openConnection: connect() succeed.",
                                             "LightDevice::executeString: Connect",
                                             "LightDevice::executeString: GetWaveLengthLED"));
        EXPECT_EQ(light.device.getOpenCount(), 0U);
        EXPECT_TRUE(light.device.isConnected());
    }
}

TEST(Wavelengths, MayBeFollowedByMoreThanSixteenAfterTheirEnd) {
    EXPECT_THAT(Fitted("365,0," + kSixteen + "\r").wavelengths(), ElementsAre(365));
}

}  // namespace
