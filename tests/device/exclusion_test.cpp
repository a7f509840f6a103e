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
using testing::SizeIs;

namespace {

constexpr int kRounds = 200;

/// Whether every request got its own reply. Ends with the first that did not.
bool repliesAreRight(OpenLight& light, const std::string& request, const std::string& expected) {
    for (int round = 0; round < kRounds; ++round) {
        std::string reply;
        if (failureOf([&] { reply = light.exchange(request); }) != Failure() || reply != expected) {
            return false;
        }
    }
    return true;
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
        std::async(std::launch::async, [&] { return repliesAreRight(light_, "GS", "3456\r"); });
    EXPECT_TRUE(repliesAreRight(light_, "GI", "12\r"));
    EXPECT_TRUE(other.get());
    const Lines lines = log.lines();
    EXPECT_THAT(lines, SizeIs(4 * kRounds));
    EXPECT_THAT(lines, ElementsAreArray(undisturbed(lines)));
    EXPECT_THAT(light_.takeRequests(), SizeIs(2 * kRounds));
}

TEST_F(Exclusion, KeepsThePresenceByteOutOfExchanges) {
    light_.port.addFault(onRequest("A"), scripted("A"));
    auto other =
        std::async(std::launch::async, [&] { return repliesAreRight(light_, "GI", "12\r"); });
    for (int round = 0; round < 10; ++round) {
        ASSERT_TRUE(light_.device.ping());
    }
    EXPECT_TRUE(other.get());
}

TEST_F(Exclusion, KeepsArraysOutOfExchanges) {
    light_.port.addFault(onRequest("GA"), scripted("Zab"));
    auto other =
        std::async(std::launch::async, [&] { return repliesAreRight(light_, "GI", "12\r"); });
    std::string request = "GA\r";
    for (int round = 0; round < kRounds; ++round) {
        std::string answer = "..";
        light_.device.readArray(request.data(), request.size(), answer.data(), answer.size());
        ASSERT_EQ(answer, "ab");
    }
    EXPECT_TRUE(other.get());
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

/// An exchange under way, which fails after its time-out; its last line is that of its last
/// attempt.
class ExchangeUnderWay : public Exclusion {
  protected:
    ExchangeUnderWay() {
        light_.port.addFault(onRequest("slow"), silence());
        failure_ = std::async(std::launch::async,
                              [&] { return failureOf([&] { light_.exchange("slow"); }); });
        EXPECT_TRUE(light_.port.waitForRequests(1));
    }

    void expectEnded() {
        EXPECT_THAT(log_.lines(), SizeIs(4));
        EXPECT_EQ(failure_.get().first, 0xA0515019);
    }

    LogCapture log_;
    std::future<Failure> failure_;
};

TEST_F(ExchangeUnderWay, LetsTheQuestionForTheConnectionWait) {
    EXPECT_TRUE(light_.device.isConnected());
    expectEnded();
}

TEST_F(ExchangeUnderWay, LetsAPurgeWait) {
    light_.device.Purge();
    expectEnded();
}

TEST_F(ExchangeUnderWay, LetsACloseWait) {
    light_.device.closeConnection(true);
    EXPECT_THAT(log_.take(), SizeIs(5)) << "the last is the close's own";
    EXPECT_EQ(failure_.get().first, 0xA0515019);
}

}  // namespace
