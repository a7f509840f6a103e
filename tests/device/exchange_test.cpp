// One request and its reply.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "sim/fault.h"
#include "tests/support/exceptions.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/waiting.h"

using orvex::sim::onRequest;
using orvex::sim::scripted;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Light;
using orvex_test::LogCapture;
using orvex_test::OpenLight;
using orvex_test::waitUntil;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

namespace {

const Failure kNotConnected{0x80517006, "DriverException (0x80517006) "};
const Failure kInvalid{0xA0515001, "DriverException (0xa0515001) "};

class Exchange : public testing::Test {
  protected:
    /// The reply when the device sends these bytes.
    std::string replyWhenSent(const std::string& bytes) {
        light_.port.addFault(onRequest("GI"), scripted(bytes));
        return light_.exchange("GI");
    }

    /// Every byte sent, of which so many are expected.
    std::string sentBytes(std::size_t expected) {
        EXPECT_TRUE(waitUntil([&] { return light_.port.received().size() >= expected; }));
        return light_.port.received();
    }

    OpenLight light_{ORVEX_TYPE_ALDER};
};

TEST_F(Exchange, EndsARequestWithACarriageReturn) {
    light_.exchange("GI");
    EXPECT_EQ(light_.port.received(), "GI\r");
}

TEST_F(Exchange, SendsAnEmptyRequestAsOneCarriageReturn) {
    const LogCapture log;
    light_.exchange("");
    EXPECT_EQ(light_.port.received(), "\r");
    EXPECT_THAT(log.lines(), ElementsAre("Send [*] ->", " <-Received [ok*]"));
}

TEST_F(Exchange, SendsARequestThatHoldsACarriageReturnUnchanged) {
    light_.exchange("GI\rX");
    EXPECT_EQ(sentBytes(4), "GI\rX");
}

TEST_F(Exchange, AppendsNothingToARequestThatEndsInACarriageReturn) {
    light_.exchange("co\r");
    EXPECT_EQ(light_.port.received(), "co\r");
}

TEST_F(Exchange, LogsRequestAndReply) {
    const LogCapture log;
    EXPECT_EQ(replyWhenSent("12\r"), "12\r");
    EXPECT_THAT(log.lines(), ElementsAre("Send [GI*] ->", " <-Received [12*]"));
}

TEST_F(Exchange, LogsARequestUpToItsFirstCarriageReturn) {
    const LogCapture log;
    light_.exchange("GI\rX\rY");
    EXPECT_THAT(log.lines(), ElementsAre("Send [GI*] ->", " <-Received [ok*]"));
}

TEST_F(Exchange, LogsItsTrafficAsTraffic) {
    const LogCapture log(0x3F);
    light_.exchange("GI");
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Exchange, SendsARequestOf1023Bytes) {
    light_.exchange(std::string(1023, 'x'));
    EXPECT_EQ(light_.port.received(), std::string(1023, 'x') + "\r");
}

TEST_F(Exchange, SendsARequestOf1023BytesWithACarriageReturn) {
    light_.exchange(std::string(1022, 'x') + "\r");
    EXPECT_EQ(light_.port.received(), std::string(1022, 'x') + "\r");
}

TEST_F(Exchange, RefusesARequestOf1024Bytes) {
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light_.exchange(std::string(1024, 'x')); }), kInvalid);
    EXPECT_EQ(failureOf([&] { light_.exchange(std::string(1023, 'x') + "\r"); }), kInvalid);
    EXPECT_THAT(log.lines(), IsEmpty());
    light_.exchange("GI");
    EXPECT_EQ(light_.port.received(), "GI\r");
}

TEST_F(Exchange, ReturnsALoneCarriageReturn) {
    const LogCapture log;
    EXPECT_EQ(replyWhenSent("\r"), "\r");
    EXPECT_THAT(log.lines(), ElementsAre("Send [GI*] ->", " <-Received [*]"));
}

TEST_F(Exchange, ReplacesTheReplyOfTheCaller) {
    std::string reply = "something longer";
    light_.device.executeString("GI", reply);
    EXPECT_EQ(reply, "ok\r");
}

TEST_F(Exchange, ReturnsBytesOfAnyValue) {
    const std::string bytes("\0\xFF*\n\r", 5);
    EXPECT_EQ(replyWhenSent(bytes), bytes);
}

TEST_F(Exchange, FailsWithTheErrorReply) {
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { replyWhenSent("e\r"); }),
              Failure(0x80515003,
                      "DriverException (0x80515003): LightDevice::executeString: Command \"GI\" "
                      "answered with error \"e\\r\""));
    EXPECT_THAT(log.lines(), ElementsAre("Send [GI*] ->"));
}

TEST_F(Exchange, NamesTheFailedRequestUpToItsFirstCarriageReturn) {
    light_.port.addFault(onRequest("GI"), scripted("e\r"));
    EXPECT_EQ(failureOf([&] { light_.exchange("GI\rX"); }).second,
              "DriverException (0x80515003): LightDevice::executeString: Command \"GI\" "
              "answered with error \"e\\r\"");
}

TEST_F(Exchange, LeavesTheReplyOfTheCallerWhenItFails) {
    light_.port.addFault(onRequest("GI"), scripted("e\r"));
    std::string reply = "before";
    EXPECT_NE(failureOf([&] { light_.device.executeString("GI", reply); }), Failure());
    EXPECT_NE(failureOf([&] { light_.device.executeString(std::string(1024, 'x'), reply); }),
              Failure());
    EXPECT_EQ(reply, "before");
}

TEST_F(Exchange, GoesOnAfterTheErrorReply) {
    EXPECT_NE(failureOf([&] { replyWhenSent("e\r"); }), Failure());
    EXPECT_EQ(light_.exchange("other"), "ok\r");
}

TEST_F(Exchange, TakesOnlyTheErrorReplyAsAFailure) {
    EXPECT_EQ(replyWhenSent("E\r"), "E\r");
    EXPECT_EQ(replyWhenSent("e1\r"), "e1\r");
    EXPECT_EQ(replyWhenSent("ee\r"), "ee\r");
    EXPECT_EQ(replyWhenSent(" e\r"), " e\r");
    EXPECT_EQ(replyWhenSent("1e\r"), "1e\r");
}

TEST_F(Exchange, CutsAReplyAt1024Bytes) {
    const LogCapture log;
    const std::string cut(1024, '5');
    EXPECT_EQ(replyWhenSent(cut + "67\r"), cut);
    EXPECT_THAT(log.lines(), ElementsAre("Send [GI*] ->", " <-Received [" + cut + "]"));
}

TEST_F(Exchange, ReturnsAReplyOf1024BytesWithoutATerminator) {
    EXPECT_EQ(replyWhenSent(std::string(1024, '5')), std::string(1024, '5'));
}

TEST_F(Exchange, ReturnsATerminatedReplyOf1024Bytes) {
    const LogCapture log;
    const std::string text(1023, '5');
    EXPECT_EQ(replyWhenSent(text + "\r"), text + "\r");
    EXPECT_THAT(log.lines(), ElementsAre("Send [GI*] ->", " <-Received [" + text + "*]"));
}

TEST_F(Exchange, DiscardsTheRestOfACutReplyBeforeTheNextRequest) {
    replyWhenSent(std::string(2000, '5'));
    EXPECT_EQ(light_.exchange("other"), "ok\r");
}

TEST_F(Exchange, ReadsNothingBehindTheCarriageReturn) {
    EXPECT_EQ(replyWhenSent("1\r23\r"), "1\r");
    std::string rest(3, '\0');
    std::size_t received = 0;
    light_.device.Read(rest.data(), rest.size(), received);
    EXPECT_EQ(rest, "23\r");
}

TEST_F(Exchange, WaitsForASlowReply) {
    orvex::sim::Fault slow = scripted("1234\r");
    slow.bytePause = 20ms;
    slow.delay = 300ms;
    light_.port.addFault(onRequest("GI"), slow);
    EXPECT_EQ(light_.exchange("GI"), "1234\r");
}

TEST_F(Exchange, FailsOnAPortThatHasEnded) {
    light_.port.hangUp();
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light_.exchange("GI"); }),
              Failure(0x80515003, "DriverException (0x80515003): SerialLink::purge: read."));
    EXPECT_THAT(log.lines(),
                ElementsAre("Send [GI*] ->",
                            "Error: SerialLink::purge: Error 5 from ioctl: Input/output error"));
}

TEST(ExchangeWithoutConnection, IsRefused) {
    Light light(ORVEX_TYPE_ALDER);
    const LogCapture log;
    EXPECT_EQ(failureOf([&] { light.exchange("GI"); }), kNotConnected);
    EXPECT_THAT(log.lines(),
                ElementsAre("Error: LightDevice::executeString: LightDevice is not connected."));
}

TEST(ExchangeWithoutConnection, IsRefusedBeforeTheLengthIsLookedAt) {
    Light light(ORVEX_TYPE_ALDER);
    EXPECT_EQ(failureOf([&] { light.exchange(std::string(1024, 'x')); }), kNotConnected);
}

TEST(ExchangeWithoutConnection, IsRefusedAfterAClose) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.device.closeConnection(false);
    EXPECT_EQ(failureOf([&] { light.exchange("GI"); }), kNotConnected);
}

}  // namespace
