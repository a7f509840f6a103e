// A light that is unplugged while a program works with it: every call ends, and soon.
#include <future>
#include <thread>

#include "device/light_device.h"
#include "tests/support/exceptions.h"
#include "tests/vm/usb_lights.h"

namespace {

using namespace std::chrono_literals;

using orvex::sim::delayed;
using orvex::sim::onCommand;
using orvex_test::failureOf;
using orvex_test::kAtOnce;
using orvex_test::timeTaken;
using orvex_test::UsbLight;
using ::testing::AnyOf;
using ::testing::IsEmpty;
using ::testing::Le;
using ::testing::Lt;

class Unplugging : public orvex_test::UsbLights {
  protected:
    /// Starts a call, waits until the light has got its request, and pulls the light.
    /// @return what the call returned, after at most three reads that ended with nothing
    template <typename Call>
    auto pullDuring(UsbLight& light, const std::string& request, Call call) {
        auto result = std::async(std::launch::async, call);
        EXPECT_TRUE(light.awaitRequest(request));
        return pullAndWait(light, result);
    }

    template <typename Result>
    auto pullAndWait(UsbLight& light, std::future<Result>& result) {
        const long before = emptyReads();
        light.pull();
        EXPECT_THAT(timeTaken([&] { result.wait(); }), Lt(kAtOnce));
        EXPECT_THAT(emptyReads() - before, Le(3));
        return result.get();
    }

    /// The light's handle is unknown after the next scan.
    void expectForgotten(std::uint64_t handle) {
        EXPECT_TRUE(orvex_test::waitForSystem([] { return scan().empty(); }));
        EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "a0515007");
        EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_ERR_INVALID_HANDLE);
    }
};

TEST_F(Unplugging, MakesEveryExchangeFailAtOnce) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    OrvexStruct changed = record(handle);
    changed.aChannels[0].iIntensity = 100;
    light.unplug();
    const auto taken = timeTaken([&] {
        for (int k = 0; k < 20; ++k) {
            EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "80515003");
        }
        EXPECT_EQ(reply(handle, "SetSpeakerVolume", "1"), "80515003");
        EXPECT_EQ(ORVEX_SetOVStruct(handle, &changed), ORVEX_ERR_IO);
        EXPECT_EQ(ORVEX_SwitchOrvex(handle, true, false), ORVEX_ERR_IO);
    });
    EXPECT_THAT(taken, Lt(kAtOnce));
    EXPECT_EQ(emptyReads(), 0);
    EXPECT_THAT(light.requests(), IsEmpty());
}

TEST_F(Unplugging, EndsTheTransfersOfTheDeviceClass) {
    UsbLight& light = plugTamar();
    LightDevice device(ORVEX_TYPE_TAMAR, light.port());
    ASSERT_NE(device.openConnection(9600), nullptr);
    light.unplug();
    std::array<char, 4> bytes{};
    std::size_t received = 1;
    const auto taken = timeTaken([&] {
        EXPECT_EQ(failureOf([&] { device.Write("A", 1); }).first, ORVEX_ERR_SEND);
        EXPECT_EQ(device.Read(bytes.data(), 4, received), 0u);
        EXPECT_EQ(failureOf([&] { device.Purge(); }).first, ORVEX_ERR_IO);
        EXPECT_EQ(failureOf([&] { device.ping(); }).first, ORVEX_ERR_IO);
        EXPECT_EQ(failureOf([&] { device.writeArray(bytes.data(), 4); }).first, ORVEX_ERR_IO);
        EXPECT_EQ(failureOf([&] { device.readArray(bytes.data(), 4, bytes.data(), 4); }).first,
                  ORVEX_ERR_IO);
        EXPECT_EQ(device.closeConnection(false), 0);
    });
    EXPECT_THAT(taken, Lt(kAtOnce));
    EXPECT_EQ(emptyReads(), 1);
}

TEST_F(Unplugging, LeavesTheCallsThatSendNothingAsTheyWere) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.unplug();
    std::uint32_t opened = 0;
    EXPECT_EQ(record(handle).iNumChannels, 6);
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_OK);
    EXPECT_EQ(ORVEX_GetDeviceInfo(handle, nullptr, nullptr, 0, &opened), ORVEX_OK);
    EXPECT_EQ(opened, 2u);
}

TEST_F(Unplugging, LeavesClosingPossible) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.unplug();
    EXPECT_THAT(timeTaken([&] { ORVEX_CloseDevice(handle); }), Lt(kAtOnce));
    EXPECT_EQ(reply(handle, "GetSoftwareVersion"), "80517006");
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_ERR_NO_DEVICE);
    expectForgotten(handle);
}

TEST_F(Unplugging, IsSeenByTheNextScanWhichClosesTheLight) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.unplug();
    std::vector<std::uint64_t> found;
    EXPECT_THAT(timeTaken([&] { found = scan(); }), Lt(kAtOnce));
    EXPECT_THAT(found, IsEmpty());
    expectForgotten(handle);
}

TEST_F(Unplugging, BetweenScanAndOpenMeansNoDevice) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = handleAt(light.port());
    light.unplug();
    EXPECT_EQ(ORVEX_OpenDeviceEx(handle), ORVEX_ERR_NO_DEVICE);
    std::uint64_t opened = 0;
    EXPECT_EQ(ORVEX_OpenDevice(&opened, 8, nullptr, 9600), ORVEX_ERR_NO_DEVICE);
}

TEST_F(Unplugging, EndsACommandThatWaitsForItsReply) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.addFault(onCommand("GetTemperature"), delayed(60s));
    EXPECT_EQ(pullDuring(light, "gt?\r", [&] { return reply(handle, "GetTemperature"); }),
              "a0515019");
    EXPECT_EQ(reply(handle, "GetTemperature"), "80515003");
    ORVEX_CloseDevice(handle);
    expectForgotten(handle);
}

TEST_F(Unplugging, EndsACommandInTheMidstOfItsReply) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.addFault(onCommand("GetNameLED"), orvex::sim::slowly(300ms));
    auto result = std::async(std::launch::async, [&] { return reply(handle, "GetNameLED"); });
    EXPECT_TRUE(light.awaitSent(3));
    EXPECT_EQ(pullAndWait(light, result), "a0515019");
}

TEST_F(Unplugging, EndsAnOpen) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = handleAt(light.port());
    light.addFault(onCommand("GetNameLED"), delayed(60s));
    EXPECT_EQ(pullDuring(light, "ln?\r", [&] { return ORVEX_OpenDeviceEx(handle); }),
              ORVEX_ERR_RECV);
    std::uint32_t opened = 1;
    EXPECT_EQ(ORVEX_GetDeviceInfo(handle, nullptr, nullptr, 0, &opened), ORVEX_OK);
    EXPECT_EQ(opened, 0u);
    expectForgotten(handle);
}

TEST_F(Unplugging, EndsAClose) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.addFault(onCommand("Disconnect"), delayed(60s));
    const auto call = [&] {
        ORVEX_CloseDevice(handle);
        return true;
    };
    EXPECT_TRUE(pullDuring(light, "dc\r", call));
    expectForgotten(handle);
}

TEST_F(Unplugging, EndsTheWaitForAGroup) {
    UsbLight& light = plugTamar();
    const std::uint64_t handle = open(light);
    light.addFault(onCommand("GetUnitStatus"), orvex::sim::scripted("0,0,0,0,0,0,0,0\r"));
    OrvexStruct state = record(handle);
    state.aChannels[4].iState = 1;
    const auto call = [&] { return ORVEX_SetOVStruct(handle, &state); };
    EXPECT_THAT(pullDuring(light, "us?\r", call),
                AnyOf(ORVEX_ERR_IO, ORVEX_ERR_RECV, ORVEX_ERR_SEND));
}

/// Such a light also keeps a close waiting, for half a minute, until what was written is dropped.
TEST_F(Unplugging, EndsTheOpenOfALightThatTakesNoBytes) {
    orvex_test::Gadget gadget(3, orvex_test::kTamar);
    gadget.plug();
    const std::uint64_t handle = handleAt(gadget.port());
    auto result = std::async(std::launch::async, [&] { return ORVEX_OpenDeviceEx(handle); });
    EXPECT_EQ(result.wait_for(4s), std::future_status::timeout);
    gadget.pull();
    EXPECT_THAT(timeTaken([&] { result.wait(); }), Lt(kAtOnce));
    EXPECT_EQ(result.get(), ORVEX_ERR_RECV);
}

}  // namespace
