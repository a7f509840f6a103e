// Several threads and their devices.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

#include "sim/fault.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"

using orvex::sim::onRequest;
using orvex::sim::scripted;
using orvex::sim::silence;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Lines;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using testing::ElementsAreArray;
using testing::Eq;

namespace {

constexpr int kRounds = 200;

/// The rounds in which a request did not get its own reply.
int wrongReplies(OpenLight& light, const std::string& request, const std::string& expected) {
    int wrong = 0;
    for (int round = 0; round < kRounds; ++round) {
        std::string reply;
        const Failure failure = failureOf([&] { reply = light.exchange(request); });
        wrong += failure == Failure() && reply == expected ? 0 : 1;
    }
    return wrong;
}

/// The lines of the exchanges that the lines of requests begin.
Lines undisturbed(const Lines& lines) {
    Lines expected;
    for (const std::string& line : lines) {
        if (line == "Send [GI*] ->") {
            expected.insert(expected.end(), {line, " <-Received [12*]"});
        } else if (line == "Send [GS*] ->") {
            expected.insert(expected.end(), {line, " <-Received [3456*]"});
        }
    }
    return expected;
}

class Exclusion : public testing::Test {
  protected:
    Exclusion() {
        light_.port.addFault(onRequest("GI"), scripted("12\r"));
        light_.port.addFault(onRequest("GS"), scripted("3456\r"));
    }

    OpenLight light_{ORVEX_TYPE_ALDER};
};

TEST_F(Exclusion, LetsExchangesOnADeviceFollowEachOther) {
    const LogCapture log(0x40);
    auto other =
        std::async(std::launch::async, [&] { return wrongReplies(light_, "GS", "3456\r"); });
    EXPECT_EQ(wrongReplies(light_, "GI", "12\r"), 0);
    EXPECT_EQ(other.get(), 0);
    const Lines lines = log.lines();
    EXPECT_THAT(lines, testing::SizeIs(4 * kRounds));
    EXPECT_THAT(lines, ElementsAreArray(undisturbed(lines)));
    EXPECT_THAT(light_.takeRequests(), testing::SizeIs(2 * kRounds));
}

TEST_F(Exclusion, KeepsThePresenceByteOutOfExchanges) {
    light_.port.addFault(onRequest("A"), scripted("A"));
    auto other = std::async(std::launch::async, [&] { return wrongReplies(light_, "GI", "12\r"); });
    for (int round = 0; round < 10; ++round) {
        EXPECT_TRUE(light_.device.ping());
    }
    EXPECT_EQ(other.get(), 0);
}

TEST_F(Exclusion, KeepsArraysOutOfExchanges) {
    light_.port.addFault(onRequest("GA"), scripted("Zab"));
    auto other = std::async(std::launch::async, [&] { return wrongReplies(light_, "GI", "12\r"); });
    std::string request = "GA\r";
    for (int round = 0; round < kRounds; ++round) {
        std::string answer = "..";
        light_.device.readArray(request.data(), request.size(), answer.data(), answer.size());
        EXPECT_EQ(answer, "ab");
    }
    EXPECT_EQ(other.get(), 0);
}

TEST_F(Exclusion, KeepsAPurgeOutOfExchanges) {
    auto other = std::async(std::launch::async, [&] { return wrongReplies(light_, "GI", "12\r"); });
    for (int round = 0; round < 20 * kRounds; ++round) {
        light_.device.Purge();
    }
    EXPECT_EQ(other.get(), 0);
}

TEST_F(Exclusion, LetsAnotherDeviceGoOn) {
    OpenLight silent(ORVEX_TYPE_ALDER);
    silent.port.addFault(onRequest("GI"), silence());
    auto failure =
        std::async(std::launch::async, [&] { return failureOf([&] { silent.exchange("GI"); }); });
    ASSERT_TRUE(silent.port.waitForRequests(1));
    EXPECT_EQ(light_.exchange("GI"), "12\r");
    EXPECT_THAT(failure.wait_for(std::chrono::seconds(0)), Eq(std::future_status::timeout));
    EXPECT_EQ(failure.get().first, 0xA0515019);
}

TEST_F(Exclusion, HoldsTheQuestionForTheConnectionUntilAnExchangeEnds) {
    light_.port.addFault(onRequest("slow"), silence());
    auto failure =
        std::async(std::launch::async, [&] { return failureOf([&] { light_.exchange("slow"); }); });
    ASSERT_TRUE(light_.port.waitForRequests(1));
    EXPECT_TRUE(light_.device.isConnected());
    EXPECT_THAT(failure.wait_for(std::chrono::seconds(10)), Eq(std::future_status::ready));
    EXPECT_EQ(light_.takeRequests().size(), 1U);
}

}  // namespace
