// ORVEX_GetOVStruct and ORVEX_SetOVStruct.
#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

#include "tests/support/attached_devices.h"

namespace {

using orvex_test::api;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A record with room behind it, filled with '#'.
class RoomyRecord {
  public:
    explicit RoomyRecord(std::uint16_t size) {
        bytes.fill('#');
        record().iSize = size;
    }

    OrvexStruct& record() { return *reinterpret_cast<OrvexStruct*>(bytes.data()); }
    [[nodiscard]] std::string front() const { return {bytes.data(), 2008}; }
    [[nodiscard]] std::string back() const { return {bytes.data() + 2008, 1992}; }

    alignas(OrvexStruct) std::array<char, 4000> bytes;
};

std::string bytesOf(const OrvexStruct& record) {
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

void name(OrvexChannel& channel, const char* text) {
    std::strncpy(channel.szLedName, text, sizeof channel.szLedName - 1);
}

class StateRecordCalls : public orvex_test::AttachedDevices {
  protected:
    static Setup fourPositions() {
        Setup setup;
        setup.wavelengths = {365, 999, 470, 999};
        setup.names = {"UV", "none", "BLUE", "none"};
        setup.intensities = {100, 200, 300, 400};
        setup.temperatures = {31, 32, 33, 34};
        setup.ledsOn = {3};
        setup.serialText = "TA-0815";
        return setup;
    }

    static OrvexStruct recordOf(std::uint64_t handle) {
        OrvexStruct record{};
        record.iSize = 2008;
        EXPECT_EQ(api().GetOVStruct(handle, &record), 0u);
        return record;
    }
};

TEST_F(StateRecordCalls, RefuseAnUnknownHandleBeforeTheyLookAtTheRecord) {
    EXPECT_EQ(api().GetOVStruct(0x1234, nullptr), 0xA0515007u);
    EXPECT_EQ(api().SetOVStruct(0x1234, nullptr), 0xA0515007u);
    EXPECT_EQ(api().GetOVStruct(0, nullptr), 0xA0515007u);
    EXPECT_EQ(api().SetOVStruct(0, nullptr), 0xA0515007u);
    RoomyRecord record(2007);
    EXPECT_EQ(api().GetOVStruct(0x1234, &record.record()), 0xA0515007u);
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(StateRecordCalls, RefuseARecordBelow2008Bytes) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    for (const std::uint16_t size : std::initializer_list<std::uint16_t>{0, 1, 116, 2007}) {
        RoomyRecord record(size);
        const auto before = record.bytes;
        EXPECT_EQ(api().GetOVStruct(handle, &record.record()), 0x80513002u);
        EXPECT_EQ(api().SetOVStruct(handle, &record.record()), 0x80513002u);
        EXPECT_EQ(record.bytes, before);
    }
    EXPECT_THAT(log.take(), IsEmpty());
    EXPECT_EQ(device.received(), "");
}

TEST_F(StateRecordCalls, ReportALedSourceByteForByte) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    OrvexStruct expected{};
    expected.iSize = 2008;
    std::memcpy(expected.szModelName, "Tamar", 5);
    expected.hDevice = handle;
    expected.iNumChannels = 2;
    expected.iSerialNumber = 815;
    expected.iCapabilities = 16;
    name(expected.aChannels[0], "UV");
    expected.aChannels[0].iWavelength = 365;
    expected.aChannels[0].iIntensity = 100;
    expected.aChannels[0].iMinIntensity = 50;
    expected.aChannels[0].iMaxIntensity = 1000;
    expected.aChannels[0].iIntensityStep = 10;
    expected.aChannels[0].iTemperature = 31;
    name(expected.aChannels[1], "BLUE");
    expected.aChannels[1].iWavelength = 470;
    expected.aChannels[1].iIntensity = 300;
    expected.aChannels[1].iMinIntensity = 50;
    expected.aChannels[1].iMaxIntensity = 1000;
    expected.aChannels[1].iIntensityStep = 10;
    expected.aChannels[1].iTemperature = 33;
    expected.aChannels[1].iState = 1;

    RoomyRecord record(2008);
    EXPECT_EQ(api().GetOVStruct(handle, &record.record()), 0u);
    EXPECT_EQ(record.front(), bytesOf(expected));
    EXPECT_EQ(record.back(), std::string(1992, '#'));
    EXPECT_EQ(device.received(), "");
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(StateRecordCalls, ReportALampWithoutChannels) {
    attach(ORVEX_TYPE_CEDAR);
    const std::uint64_t handle = open();
    OrvexStruct expected{};
    expected.iSize = 2008;
    std::memcpy(expected.szModelName, "Cedar", 5);
    expected.hDevice = handle;
    expected.iCapabilities = 3;
    EXPECT_EQ(bytesOf(recordOf(handle)), bytesOf(expected));
}

TEST_F(StateRecordCalls, ReportAnEmptyRecordBeforeTheFirstOpen) {
    attach(ORVEX_TYPE_TAMAR);
    const std::uint64_t handle = scan().at(0);
    OrvexStruct expected{};
    expected.iSize = 2008;
    EXPECT_EQ(bytesOf(recordOf(handle)), bytesOf(expected));
}

TEST_F(StateRecordCalls, WriteOnly2008BytesOfALargerRecord) {
    attach(fourPositions());
    const std::uint64_t handle = open();
    RoomyRecord record(4000);
    EXPECT_EQ(api().GetOVStruct(handle, &record.record()), 0u);
    EXPECT_EQ(record.record().iSize, 2008u);
    EXPECT_EQ(record.front(), bytesOf(recordOf(handle)));
    EXPECT_EQ(record.back(), std::string(1992, '#'));
}

TEST_F(StateRecordCalls, SendNothingForARecordThatChangesNothing) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    const OrvexStruct record = recordOf(handle);
    EXPECT_EQ(api().SetOVStruct(handle, &record), 0u);
    EXPECT_EQ(device.received(), "");
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(StateRecordCalls, SendWhatARecordChanges) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    OrvexStruct record = recordOf(handle);
    record.aChannels[0].iIntensity = 708;
    record.aChannels[0].iState = 1;
    record.aChannels[1].iState = 0;
    EXPECT_EQ(api().SetOVStruct(handle, &record), 0u);
    EXPECT_THAT(device.requests(), ElementsAre("ip=700,200,300,400\r", "of=2,3,4\r", "on=1\r"));
    EXPECT_EQ(record.aChannels[0].iIntensity, 708);
    EXPECT_EQ(recordOf(handle).aChannels[0].iIntensity, 700);
    EXPECT_EQ(recordOf(handle).aChannels[0].iState, 1);
    EXPECT_EQ(recordOf(handle).aChannels[1].iState, 0);
}

TEST_F(StateRecordCalls, IgnoreWhatIsBehind2008Bytes) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    RoomyRecord record(2008);
    EXPECT_EQ(api().GetOVStruct(handle, &record.record()), 0u);
    record.record().iSize = 4000;
    record.record().aChannels[1].iIntensity = 500;
    const auto before = record.bytes;
    EXPECT_EQ(api().SetOVStruct(handle, &record.record()), 0u);
    EXPECT_EQ(record.bytes, before);
    EXPECT_THAT(device.requests(), ElementsAre("ip=100,200,500,400\r"));
    EXPECT_EQ(recordOf(handle).iSize, 2008u);
}

TEST_F(StateRecordCalls, RefuseMoreChannelsThanTheDeviceHas) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    OrvexStruct record = recordOf(handle);
    record.iNumChannels = 3;
    record.aChannels[0].iIntensity = 900;
    EXPECT_EQ(api().SetOVStruct(handle, &record), 0xA0515001u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_SetOVStruct: failed. Exception: "
                                        "DriverException (0xa0515001): OrvexStruct::iNumChannels "
                                        "is greater than available channels"));
    EXPECT_EQ(device.received(), "");
    EXPECT_EQ(recordOf(handle).aChannels[0].iIntensity, 100);
}

TEST_F(StateRecordCalls, ReturnTheCodeOfAFailingRequest) {
    Device& device = attach(fourPositions());
    const std::uint64_t handle = open();
    device.addFault(orvex::sim::onCommand("SetIntensity"), orvex::sim::errorReply());
    OrvexStruct record = recordOf(handle);
    record.aChannels[0].iIntensity = 900;
    log.restart(0x1);
    EXPECT_EQ(api().SetOVStruct(handle, &record), 0x80515003u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_SetOVStruct: failed. Exception: "
                                        "DriverException (0x80515003): LightDevice::executeString: "
                                        "Command \"ip=900,200,300,400\" answered with error "
                                        "\"e\\r\""));
}

TEST_F(StateRecordCalls, HaveNoChannelsBeforeTheFirstOpen) {
    const Device& device = attach(fourPositions());
    const std::uint64_t handle = scan().at(0);
    OrvexStruct record{};
    record.iSize = 2008;
    EXPECT_EQ(api().SetOVStruct(handle, &record), 0u);
    log.restart(0x7F);
    record.iNumChannels = 1;
    EXPECT_EQ(api().SetOVStruct(handle, &record), 0xA0515001u);
    EXPECT_THAT(log.take(), ElementsAre("Error: ORVEX_SetOVStruct: failed. Exception: "
                                        "DriverException (0xa0515001): OrvexStruct::iNumChannels "
                                        "is greater than available channels"));
    EXPECT_EQ(device.received(), "");
}

}  // namespace
