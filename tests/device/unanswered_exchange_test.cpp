// Requests that the device, or the port, fails on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
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
using orvex_test::timeTaken;
using testing::ElementsAre;
using testing::Ge;
using testing::SizeIs;
using namespace std::chrono_literals;

namespace {

const Failure kNoByte{0xA0515019,
                      "DriverException (0xa0515019): SerialLink::recvChar: Wrong recv length: 0"};
const std::string kNothingRead = "Error: SerialLink::recvArray: read returned with EOF (0)";

TEST(UnansweredExchange, FailsAfterItsTimeOut) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.port.addFault(onRequest("GI"), silence());
    const LogCapture log;
    Failure failure;
    EXPECT_THAT(timeTaken([&] { failure = failureOf([&] { light.exchange("GI"); }); }), Ge(2000ms));
    EXPECT_EQ(failure, kNoByte);
    EXPECT_THAT(log.lines(),
                ElementsAre("Send [GI*] ->", kNothingRead, kNothingRead, kNothingRead));
}

TEST(UnansweredExchange, PausesAfterEveryAttempt) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.port.addFault(onRequest("GI"), silence());
    const SkippedPauses pauses;
    EXPECT_EQ(failureOf([&] { light.exchange("GI"); }), kNoByte);
    EXPECT_THAT(pauses.asked, ElementsAre(200ms, 200ms, 200ms));
}

TEST(UnansweredExchange, FailsWhenAReplyIsNotTerminated) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.port.addFault(onRequest("GI"), scripted("12"));
    const LogCapture log;
    const SkippedPauses pauses;
    std::string reply = "before";
    EXPECT_EQ(failureOf([&] { light.device.executeString("GI", reply); }), kNoByte);
    EXPECT_EQ(reply, "before");
    EXPECT_THAT(log.lines(),
                ElementsAre("Send [GI*] ->", kNothingRead, kNothingRead, kNothingRead));
}

TEST(UnansweredExchange, LeavesTheDeviceReadyForTheNext) {
    OpenLight light(ORVEX_TYPE_ALDER);
    light.port.addFault(onRequest("GI").nth(1), silence());
    const SkippedPauses pauses;
    EXPECT_EQ(failureOf([&] { light.exchange("GI"); }), kNoByte);
    EXPECT_EQ(light.exchange("GI"), "ok\r");
    EXPECT_THAT(light.takeRequests(), SizeIs(2));
}

}  // namespace
