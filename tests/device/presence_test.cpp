// The presence byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "sim/fault.h"
#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/waiting.h"

using orvex::sim::onRequest;
using orvex::sim::scripted;
using orvex::sim::silence;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using namespace std::chrono_literals;

namespace {

class Presence : public testing::Test {
  protected:
    void answerWith(const std::string& bytes) {
        light_.port.addFault(onRequest("A"), scripted(bytes));
    }
    void answerNothing() { light_.port.addFault(onRequest("A"), silence()); }

    OpenLight light_{ORVEX_TYPE_ALDER};
};

TEST_F(Presence, IsAskedForByOneByte) {
    EXPECT_TRUE(light_.device.ping());
    EXPECT_EQ(light_.port.received(), "A");
}

TEST_F(Presence, IsLoggedWithTheAnswer) {
    answerWith("x");
    const LogCapture log;
    EXPECT_TRUE(light_.device.ping());
    EXPECT_THAT(log.lines(), ElementsAre("Ping 'A' -> 'x'", "Ping succeed."));
}

TEST_F(Presence, IsLoggedInTwoClasses) {
    const LogCapture log(0x2);
    EXPECT_TRUE(light_.device.ping());
    EXPECT_THAT(log.lines(), ElementsAre("Ping succeed."));
    ORVEX_SetLogBits(0x20);
    EXPECT_TRUE(light_.device.ping());
    EXPECT_THAT(log.lines(), ElementsAre("Ping succeed.", "Ping 'A' -> 'o'"));
}

TEST_F(Presence, IsConfirmedByAnyByte) {
    for (const char* byte : {"e", "\r", "A", "\xFF"}) {
        answerWith(byte);
        EXPECT_TRUE(light_.device.ping()) << byte;
    }
    answerWith(std::string(1, '\0'));
    EXPECT_TRUE(light_.device.ping());
}

TEST_F(Presence, FailsWithoutAnAnswer) {
    answerNothing();
    const LogCapture log;
    bool answered = true;
    EXPECT_EQ(failureOf([&] { answered = light_.device.ping(); }), Failure());
    EXPECT_FALSE(answered);
    EXPECT_THAT(log.lines(), ElementsAre("Error: SerialLink::recvArray: read returned with EOF (0)",
                                         "Error: Failed get Ping array."));
}

TEST_F(Presence, TakesOneByteOfTheAnswer) {
    answerWith("xyz");
    EXPECT_TRUE(light_.device.ping());
    std::string rest(2, '\0');
    std::size_t received = 0;
    light_.device.Read(rest.data(), rest.size(), received);
    EXPECT_EQ(rest, "yz");
}

TEST_F(Presence, IsNotConfirmedByEarlierBytes) {
    light_.port.addFault(onRequest("GI"), scripted("1\rmore"));
    light_.exchange("GI");
    answerNothing();
    EXPECT_FALSE(light_.device.ping());
}

TEST_F(Presence, IsAwaitedForFiftyMilliseconds) {
    const SkippedPauses pauses;
    EXPECT_TRUE(light_.device.ping());
    EXPECT_THAT(pauses.asked, ElementsAre(50ms));
}

TEST_F(Presence, IsAwaitedForTheRestAfterASignal) {
    SkippedPauses pauses;
    pauses.during = [](std::size_t pause) { return pause == 1 ? 20ms : 0ms; };
    EXPECT_TRUE(light_.device.ping());
    EXPECT_THAT(pauses.asked, ElementsAre(50ms, 20ms));
}

TEST_F(Presence, DoesNotChangeTheConnection) {
    answerNothing();
    EXPECT_FALSE(light_.device.ping());
    EXPECT_TRUE(light_.device.isConnected());
    EXPECT_EQ(light_.device.getOpenCount(), 1U);
    EXPECT_EQ(light_.exchange("GI"), "ok\r");
}

TEST_F(Presence, FailsOnAPortThatHasEnded) {
    light_.port.hangUp();
    EXPECT_EQ(failureOf([&] { light_.device.ping(); }),
              Failure(0x80515003, "DriverException (0x80515003): SerialLink::purge: read."));
}

}  // namespace
