// What a device's first replies make of its record.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/support/device_fields.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex_test::cacheOf;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::ReadOut;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;

namespace {

std::vector<std::int32_t> valuesOf(const OrvexStruct& record, std::int32_t OrvexChannel::*field) {
    std::vector<std::int32_t> values;
    for (std::int32_t k = 0; k < record.iNumChannels; ++k) {
        values.push_back(record.aChannels[k].*field);
    }
    return values;
}

std::vector<std::string> namesOf(const OrvexStruct& record) {
    std::vector<std::string> names;
    for (std::int32_t k = 0; k < record.iNumChannels; ++k) {
        names.emplace_back(record.aChannels[k].szLedName);
    }
    return names;
}

/// The record of a Tamar with one reply of its own.
OrvexStruct recordAfter(std::string ReadOut::*reply, const std::string& text) {
    ReadOut readOut;
    readOut.*reply = text;
    return OpenLight(ORVEX_TYPE_TAMAR, readOut).record();
}

std::int32_t serialNumberOf(const std::string& text) {
    return recordAfter(&ReadOut::serial, text).iSerialNumber;
}

class LampReadOut : public testing::Test {
  protected:
    OrvexChannel lampOf(OrvexType model, const std::string& command, const std::string& reply) {
        Light light(model);
        light.port.replyWith(command, reply);
        light.open();
        return cacheOf(light.device).aChannels[0];
    }
};

TEST_F(LampReadOut, HasFixedLimitsForABasicLamp) {
    const OrvexChannel lamp = lampOf(ORVEX_TYPE_ALDER, "GetIntensityH4", "25\r");
    EXPECT_EQ(lamp.iWavelength, 500);
    EXPECT_EQ(lamp.iMinIntensity, 0);
    EXPECT_EQ(lamp.iMaxIntensity, 40);
    EXPECT_EQ(lamp.iIntensityStep, 10);
    EXPECT_EQ(lamp.iIntensity, 250);
    EXPECT_EQ(lamp.iTemperature, 0);
    EXPECT_EQ(lamp.iState, 0);
}

TEST_F(LampReadOut, HasLimitsFromAnExtendedLamp) {
    const OrvexChannel lamp = lampOf(ORVEX_TYPE_BIRCH, "MinimumIntensityPercentage", "7\r");
    EXPECT_EQ(lamp.iWavelength, 500);
    EXPECT_EQ(lamp.iMinIntensity, 70);
    EXPECT_EQ(lamp.iMaxIntensity, 1000);
    EXPECT_EQ(lamp.iIntensityStep, 10);
}

TEST_F(LampReadOut, HasIntensityAndTemperatureOfAnExtendedLamp) {
    EXPECT_EQ(lampOf(ORVEX_TYPE_MAPLE, "GetIntensity", "63\r").iIntensity, 630);
    EXPECT_EQ(lampOf(ORVEX_TYPE_MAPLE, "GetTemperature", "41\r").iTemperature, 41);
}

TEST_F(LampReadOut, ClampsWhatDoesNotFit) {
    EXPECT_EQ(lampOf(ORVEX_TYPE_ALDER, "GetIntensityH4", "214748365\r").iIntensity, 2147483647);
    EXPECT_EQ(lampOf(ORVEX_TYPE_BIRCH, "GetIntensity", "99999999999\r").iIntensity, 2147483647);
    EXPECT_EQ(lampOf(ORVEX_TYPE_BIRCH, "MinimumIntensityPercentage", "-999999999\r").iMinIntensity,
              -2147483647 - 1);
}

TEST_F(LampReadOut, IsZeroWithoutDigits) {
    EXPECT_EQ(lampOf(ORVEX_TYPE_ALDER, "GetIntensityH4", "bright\r").iIntensity, 0);
}

TEST_F(LampReadOut, HasTheUnitStatus) {
    Light light(ORVEX_TYPE_CEDAR);
    light.port.replyWith("GetUnitStatus", "10\r");
    light.open();
    EXPECT_EQ(light.record().iUnitStatus, 10);
    EXPECT_EQ(cacheOf(light.device).aChannels[0].iState, 0);
}

TEST_F(LampReadOut, HasNoChannelsInTheRecord) {
    const OpenLight light(ORVEX_TYPE_BIRCH);
    EXPECT_EQ(light.record().iNumChannels, 0);
    EXPECT_EQ(light.record().aChannels[0].iWavelength, 0);
}

TEST(ReadOutHeader, NamesTheModel) {
    const std::vector<std::string> names = {"Alder", "Birch", "Cedar",  "Hazel", "Larch",
                                            "Maple", "Rowan", "Spruce", "Tamar", "Willow"};
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_WILLOW; ++model) {
        EXPECT_EQ(OpenLight(model).record().szModelName, names[model]);
    }
}

TEST(ReadOutHeader, TellsTheCapabilities) {
    const std::vector<std::uint32_t> capabilities = {1, 3, 3, 3, 3, 3, 16, 16, 16, 16};
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_WILLOW; ++model) {
        EXPECT_EQ(OpenLight(model).record().iCapabilities, capabilities[model]) << model;
    }
}

TEST(ReadOutHeader, HoldsTheHandle) {
    OpenLight light(ORVEX_TYPE_ALDER);
    EXPECT_EQ(light.record().hDevice, reinterpret_cast<std::uintptr_t>(&light.device));
    EXPECT_EQ(light.record().iSize, 2008);
}

TEST(LedReadOut, FillsTheChannels) {
    ReadOut readOut;
    readOut.states = "1,0,0,1\r";
    const OrvexStruct record = OpenLight(ORVEX_TYPE_WILLOW, readOut).record();
    EXPECT_EQ(record.iNumChannels, 4);
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iWavelength), ElementsAre(365, 405, 470, 525));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iState), ElementsAre(1, 0, 0, 1));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iMinIntensity), ElementsAre(50, 60, 70, 80));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iMaxIntensity),
                ElementsAre(1000, 1000, 1000, 1000));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iIntensityStep), ElementsAre(10, 10, 10, 10));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iIntensity), ElementsAre(100, 200, 300, 400));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iTemperature), ElementsAre(30, 31, 32, 33));
    EXPECT_THAT(namesOf(record), ElementsAre("UV", "VIOLET", "BLUE", "GREEN"));
    EXPECT_EQ(record.iSerialNumber, 42);
}

TEST(LedReadOut, FillsOnlyWhatRepliesName) {
    ReadOut readOut;
    readOut.states = "1\r";
    readOut.minima = "50,60\r";
    readOut.intensities = "100,200,300\r";
    readOut.temperatures = "30\r";
    readOut.names = "UV\r";
    const OrvexStruct record = OpenLight(ORVEX_TYPE_TAMAR, readOut).record();
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iState), ElementsAre(1, 0, 0, 0));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iMinIntensity), ElementsAre(50, 60, 0, 0));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iMaxIntensity), ElementsAre(1000, 1000, 0, 0));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iIntensityStep), ElementsAre(10, 10, 0, 0));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iIntensity), ElementsAre(100, 200, 300, 0));
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iTemperature), ElementsAre(30, 0, 0, 0));
    EXPECT_THAT(namesOf(record), ElementsAre("UV", "", "", ""));
}

TEST(LedReadOut, IgnoresPiecesBeyondTheChannels) {
    ReadOut readOut;
    readOut.wavelengths = "365,405\r";
    readOut.states = "1,0,7,7\r";
    OpenLight light(ORVEX_TYPE_TAMAR, readOut);
    const OrvexChannel untouched{};
    for (int k = 2; k < 16; ++k) {
        EXPECT_EQ(std::memcmp(&cacheOf(light.device).aChannels[k], &untouched, sizeof untouched), 0)
            << k;
    }
    EXPECT_EQ(light.record().iUnitStatus, 0);
}

TEST(LedReadOut, WritesNothingBeyondSixteenChannels) {
    std::string twenty = "5";
    for (int k = 1; k < 20; ++k) {
        twenty += ",5";
    }
    twenty += "\r";
    ReadOut readOut{
        "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16\r", twenty, twenty, twenty, twenty, twenty, twenty};
    const OpenLight light(ORVEX_TYPE_TAMAR, readOut);
    const OrvexStruct record = light.record();
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iTemperature), Each(5));
    EXPECT_THAT(namesOf(record), Each(std::string("5")));
    EXPECT_EQ(record.aChannels[15].iMinIntensity, 5);
    EXPECT_EQ(light.device.getComPort(), light.port.path());
}

TEST(LedReadOut, TakesTheUnitStatusFromTheLastChannel) {
    EXPECT_EQ(recordAfter(&ReadOut::states, "1,0,0,3\r").iUnitStatus, 3);
    EXPECT_EQ(recordAfter(&ReadOut::states, "1,2\r").iUnitStatus, 2);
    EXPECT_EQ(recordAfter(&ReadOut::states, "1,2,3,4,5\r").iUnitStatus, 4);
}

TEST(LedReadOut, LogsTheStatesOfAllChannels) {
    ReadOut readOut;
    readOut.states = "1,0,3\r";
    Light light(ORVEX_TYPE_TAMAR, readOut);
    const LogCapture log(0x2);
    light.open();
    EXPECT_THAT(log.lines(), Contains("LightDevice:initDevice: LED states: [1, 0, 3, 0]"));
}

TEST(LedReadOut, TakesExtremesAndGarbage) {
    const OrvexStruct record =
        recordAfter(&ReadOut::intensities, "99999999999,-99999999999,much,\r");
    EXPECT_THAT(valuesOf(record, &OrvexChannel::iIntensity),
                ElementsAre(2147483647, -2147483647 - 1, 0, 0));
    EXPECT_THAT(valuesOf(recordAfter(&ReadOut::temperatures, ",-5,30C,0x10\r"),
                         &OrvexChannel::iTemperature),
                ElementsAre(0, -5, 30, 0));
    EXPECT_THAT(valuesOf(recordAfter(&ReadOut::minima, "\r"), &OrvexChannel::iMaxIntensity),
                ElementsAre(1000, 0, 0, 0));
}

TEST(LedNames, KeepTheirPlaces) {
    EXPECT_THAT(namesOf(recordAfter(&ReadOut::names, "UV,,RED\r")),
                ElementsAre("UV", "", "RED", ""));
    EXPECT_THAT(namesOf(recordAfter(&ReadOut::names, ",UV,,RED\r")),
                ElementsAre("", "UV", "", "RED"));
}

TEST(LedNames, AreCutToNineCharacters) {
    EXPECT_THAT(namesOf(recordAfter(&ReadOut::names, "123456789,1234567890,a name of many\r")),
                ElementsAre("123456789", "123456789", "a name of", ""));
}

TEST(LedNames, KeepTheBytesBehindThem) {
    Light light(ORVEX_TYPE_TAMAR);
    OrvexChannel& channel = cacheOf(light.device).aChannels[0];
    std::memset(channel.abNameInfo, 0x5A, sizeof channel.abNameInfo);
    light.port.replyWith("GetNameLED", "a name of many characters\r");
    light.open();
    EXPECT_THAT(channel.abNameInfo, Each(0x5A));
    EXPECT_EQ(channel.szLedName[9], '\0');
}

TEST(LedNames, DoNotContainTheCarriageReturn) {
    EXPECT_THAT(namesOf(recordAfter(&ReadOut::names, "UV,VIOLET,BLUE,RED\r")),
                ElementsAre("UV", "VIOLET", "BLUE", "RED"));
    EXPECT_THAT(namesOf(recordAfter(&ReadOut::names, "\r")), ElementsAre("", "", "", ""));
}

TEST(SerialNumber, StandsBehindTheLastDash) {
    EXPECT_EQ(serialNumberOf("SN-0042\r"), 42);
    EXPECT_EQ(serialNumberOf("A-12-77\r"), 77);
    EXPECT_EQ(serialNumberOf("12-\r"), 0);
    EXPECT_EQ(serialNumberOf("12-x5\r"), 0);
    EXPECT_EQ(serialNumberOf("-5\r"), 5);
}

TEST(SerialNumber, MayStandAlone) {
    EXPECT_EQ(serialNumberOf("4711\r"), 4711);
    EXPECT_EQ(serialNumberOf("SN42\r"), 0);
    EXPECT_EQ(serialNumberOf("\r"), 0);
}

TEST(SerialNumber, IsClamped) {
    EXPECT_EQ(serialNumberOf("SN-99999999999\r"), 2147483647);
}

TEST(SerialNumber, IsLoggedAsItCame) {
    Light light(ORVEX_TYPE_TAMAR);
    light.port.replyWith("GetUnitSerialNumber", "A-12-77 b\r");
    const LogCapture log(0x2);
    light.open();
    EXPECT_THAT(log.lines(), Contains("Full SerialNumber is: A-12-77 b\r"));
}

}  // namespace
