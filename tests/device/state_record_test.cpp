// The state record: copied out, and checked and stored when it is written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
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
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const Failure kTooMany{0xA0515001,
                       "DriverException (0xa0515001): OrvexStruct::iNumChannels is greater than "
                       "available channels"};

/// LEDs at positions 0, 2 and 3 of four.
ReadOut withAGap() {
    ReadOut readOut;
    readOut.wavelengths = "365,999,470,525\r";
    return readOut;
}

bool equal(const void* a, const void* b, std::size_t size) {
    return std::memcmp(a, b, size) == 0;
}

/// Different bytes everywhere.
void fill(void* target, std::size_t size) {
    auto* bytes = static_cast<unsigned char*>(target);
    for (std::size_t k = 0; k < size; ++k) {
        bytes[k] = static_cast<unsigned char>(k % 251 + 1);
    }
}

class StateRecord : public testing::Test {
  protected:
    OpenLight light_{ORVEX_TYPE_TAMAR, withAGap()};
    OrvexStruct record_ = light_.record();
};

TEST_F(StateRecord, CopiesTheHeaderAsItIs) {
    OrvexStruct& cache = cacheOf(light_.device);
    fill(&cache, 152);
    const OrvexStruct record = light_.record();
    EXPECT_TRUE(equal(&record, &cache, 48));
    EXPECT_EQ(record.iNumChannels, 3);
    EXPECT_TRUE(equal(&record.iExtendedChannels, &cache.iExtendedChannels, 100));
}

TEST_F(StateRecord, CopiesWholeChannelsOfFittedLeds) {
    OrvexStruct& cache = cacheOf(light_.device);
    fill(cache.aChannels, sizeof cache.aChannels);
    const OrvexStruct record = light_.record();
    EXPECT_TRUE(equal(&record.aChannels[0], &cache.aChannels[0], 116));
    EXPECT_TRUE(equal(&record.aChannels[1], &cache.aChannels[2], 116));
    EXPECT_TRUE(equal(&record.aChannels[2], &cache.aChannels[3], 116));
}

TEST_F(StateRecord, LeavesTheOtherSlotsOfTheCaller) {
    OrvexStruct record{};
    fill(&record, sizeof record);
    OrvexStruct before = record;
    light_.device.getOVStruct(record);
    EXPECT_TRUE(equal(&record.aChannels[3], &before.aChannels[3], 13 * std::size_t{116}));
}

TEST_F(StateRecord, IsCopiedWithoutARequest) {
    const LogCapture log;
    EXPECT_EQ(light_.record().iNumChannels, 3);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(StateRecord, SendsNothingWhenNothingDiffers) {
    const LogCapture log;
    light_.device.setOVStruct(record_);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(StateRecord, RefusesMoreChannelsThanAreFitted) {
    record_.iNumChannels = 4;
    record_.iDeviceInfo = 5;
    record_.aChannels[0].iIntensity = 500;
    record_.aChannels[0].iState = 1;
    const OrvexStruct before = cacheOf(light_.device);
    EXPECT_EQ(failureOf([&] { light_.device.setOVStruct(record_); }), kTooMany);
    EXPECT_TRUE(equal(&cacheOf(light_.device), &before, sizeof before));
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
}

TEST_F(StateRecord, RefusesTheLargestCount) {
    record_.iNumChannels = 2147483647;
    EXPECT_EQ(failureOf([&] { light_.device.setOVStruct(record_); }), kTooMany);
}

TEST(LampRecord, TakesNoChannel) {
    for (OrvexType model = ORVEX_TYPE_ALDER; model <= ORVEX_TYPE_MAPLE; ++model) {
        OpenLight light(model);
        OrvexStruct record = light.record();
        EXPECT_EQ(failureOf([&] { light.device.setOVStruct(record); }), Failure());
        record.iNumChannels = 1;
        EXPECT_EQ(failureOf([&] { light.device.setOVStruct(record); }), kTooMany) << model;
        EXPECT_THAT(light.takeRequests(), IsEmpty());
    }
}

TEST_F(StateRecord, HasNoChannelWithANegativeCount) {
    for (const std::int32_t count : {-1, -2147483647 - 1}) {
        record_.iNumChannels = count;
        record_.aChannels[0].iIntensity = 500;
        record_.aChannels[0].iState = 1;
        EXPECT_EQ(failureOf([&] { light_.device.setOVStruct(record_); }), Failure());
        EXPECT_THAT(light_.takeRequests(), IsEmpty());
        EXPECT_EQ(light_.record().aChannels[0].iState, 0);
    }
}

TEST_F(StateRecord, LooksOnlyAtTheChannelsItCounts) {
    record_.iNumChannels = 1;
    record_.aChannels[1].iIntensity = 500;
    record_.aChannels[2].iState = 1;
    light_.device.setOVStruct(record_);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
}

TEST_F(StateRecord, StoresTheDeviceInformation) {
    record_.iDeviceInfo = 0x123456789ABCDEF0;
    light_.device.setOVStruct(record_);
    EXPECT_EQ(light_.record().iDeviceInfo, 0x123456789ABCDEF0U);
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
    record_.iDeviceInfo = 0x100000000;
    light_.device.setOVStruct(record_);
    EXPECT_EQ(light_.record().iDeviceInfo, 0x100000000U);
}

TEST_F(StateRecord, KeepsTheDeviceInformationWhenItIsZero) {
    record_.iDeviceInfo = 7;
    light_.device.setOVStruct(record_);
    record_.iDeviceInfo = 0;
    light_.device.setOVStruct(record_);
    EXPECT_EQ(light_.record().iDeviceInfo, 7U);
}

TEST_F(StateRecord, StoresTheDeviceInformationWithoutAChannel) {
    record_.iNumChannels = -1;
    record_.iDeviceInfo = 7;
    light_.device.setOVStruct(record_);
    EXPECT_EQ(light_.record().iDeviceInfo, 7U);
}

TEST_F(StateRecord, StoresNothingElse) {
    const OrvexStruct before = light_.record();
    fill(&record_, sizeof record_);
    record_.iDeviceInfo = 0;
    record_.iNumChannels = 3;
    for (int slot = 0; slot < 3; ++slot) {
        record_.aChannels[slot].iIntensity = before.aChannels[slot].iIntensity;
        record_.aChannels[slot].iState = before.aChannels[slot].iState;
    }
    light_.device.setOVStruct(record_);
    const OrvexStruct after = light_.record();
    EXPECT_TRUE(equal(&after, &before, sizeof before));
    EXPECT_THAT(light_.takeRequests(), IsEmpty());
}

}  // namespace
