// A light that is unplugged while a program works with it: every call ends, and soon.
#include <future>
#include <thread>

#include "tests/vm/usb_lights.h"

namespace {

using orvex_test::kAtOnce;
using orvex_test::timeTaken;
using orvex_test::UsbLight;
using ::testing::IsEmpty;
using ::testing::Le;
using ::testing::Lt;

class Unplugging : public orvex_test::UsbLights {
  protected:
    /// Starts a call, waits until the light has got its request so often, and pulls the light.
    /// @return what the call returned, after at most three reads that ended with nothing
    template <typename Call>
    auto pullDuring(UsbLight& light, const std::string& request, long times, Call call) {
        auto result = std::async(std::launch::async, call);
        EXPECT_TRUE(light.awaitRequest(request, times));
        const long before = emptyReads();
        light.pull();
        EXPECT_THAT(timeTaken([&] { result.wait(); }), Lt(kAtOnce));
        EXPECT_THAT(emptyReads() - before, Le(3));
        return result.get();
    }

    /// The light's handle is unknown after the next scan.
    void expectForgotten(std::uint64_t handle) {
        EXPECT_TRUE(orvex_test::waitUntil([] { return scan().empty(); }));
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
    EXPECT_EQ(light.requests().back(), "sn?");
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
    UsbLight& light =
        plugTamar(R"({"fault": "late", "delayMs": 60000, "command": "GetTemperature", "nth": 2})");
    const std::uint64_t handle = open(light);
    EXPECT_EQ(pullDuring(light, "gt?", 2, [&] { return reply(handle, "GetTemperature"); }),
              "a0515019");
    EXPECT_EQ(reply(handle, "GetTemperature"), "80515003");
    ORVEX_CloseDevice(handle);
    expectForgotten(handle);
}

TEST_F(Unplugging, EndsACommandInTheMidstOfItsReply) {
    UsbLight& light =
        plugTamar(R"({"fault": "slow", "bytePauseMs": 300, "command": "GetNameLED", "nth": 2})");
    const std::uint64_t handle = open(light);
    const auto call = [&] { return reply(handle, "GetNameLED"); };
    EXPECT_EQ(pullDuring(light, "ln?", 2, call), "a0515019");
}

TEST_F(Unplugging, EndsAnOpen) {
    UsbLight& light = plugTamar(R"({"fault": "late", "delayMs": 60000, "command": "GetNameLED"})");
    const std::uint64_t handle = handleAt(light.port());
    EXPECT_EQ(pullDuring(light, "ln?", 1, [&] { return ORVEX_OpenDeviceEx(handle); }),
              ORVEX_ERR_RECV);
    std::uint32_t opened = 1;
    EXPECT_EQ(ORVEX_GetDeviceInfo(handle, nullptr, nullptr, 0, &opened), ORVEX_OK);
    EXPECT_EQ(opened, 0u);
    expectForgotten(handle);
}

TEST_F(Unplugging, EndsAClose) {
    UsbLight& light = plugTamar(R"({"fault": "late", "delayMs": 60000, "command": "Disconnect"})");
    const std::uint64_t handle = open(light);
    const auto call = [&] {
        ORVEX_CloseDevice(handle);
        return true;
    };
    EXPECT_TRUE(pullDuring(light, "dc", 1, call));
    expectForgotten(handle);
}

TEST_F(Unplugging, EndsTheWaitForAGroup) {
    UsbLight& light = plugTamar(R"({"fault": "reply", "bytes": "0,0,0,0,0,0,0,0\r",
                                    "command": "GetUnitStatus", "from": 2})");
    const std::uint64_t handle = open(light);
    OrvexStruct state = record(handle);
    state.aChannels[4].iState = 1;
    const std::uint32_t status =
        pullDuring(light, "us?", 4, [&] { return ORVEX_SetOVStruct(handle, &state); });
    EXPECT_TRUE(status == ORVEX_ERR_IO || status == ORVEX_ERR_RECV || status == ORVEX_ERR_SEND)
        << std::hex << status;
}

/// Such a light also keeps a close waiting, for half a minute, until what was written is dropped.
TEST_F(Unplugging, EndsTheOpenOfALightThatTakesNoBytes) {
    orvex_test::Gadget gadget(3, orvex_test::kTamar);
    gadget.plug();
    const std::uint64_t handle = handleAt(gadget.port());
    auto result = std::async(std::launch::async, [&] { return ORVEX_OpenDeviceEx(handle); });
    EXPECT_EQ(result.wait_for(std::chrono::seconds(4)), std::future_status::timeout);
    gadget.pull();
    EXPECT_THAT(timeTaken([&] { result.wait(); }), Lt(kAtOnce));
    EXPECT_EQ(result.get(), ORVEX_ERR_RECV);
}

}  // namespace
