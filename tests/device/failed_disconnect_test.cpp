// A first request that fails, and what its end makes of the port.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"
#include "tests/support/light.h"
#include "tests/support/log_capture.h"
#include "tests/support/silent_port.h"

using orvex_test::Call;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Forced;
using orvex_test::kBaud;
using orvex_test::LogCapture;
using orvex_test::SilentPort;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using namespace std::chrono_literals;

namespace {

const std::string kNothingRead = "Error: SerialLink::recvArray: read returned with EOF (0)";
const Failure kNoByte{0xA0515019,
                      "DriverException (0xa0515019): SerialLink::recvChar: Wrong recv length: 0"};

class FailedConnect : public testing::Test {
  protected:
    Failure open() {
        return failureOf([&] { device_.openConnection(kBaud); });
    }

    SilentPort port_;
    LightDevice device_{ORVEX_TYPE_ALDER, port_.path()};
    Forced nothingRead_{Call::Read, 0};
    SkippedPauses pauses_;
    LogCapture log_;
};

TEST_F(FailedConnect, DisconnectsWithAPause) {
    EXPECT_EQ(open(), kNoByte);
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 200ms, 200ms, 10ms));
    EXPECT_EQ(port_.terminal().openDescriptors(), 0U);
}

TEST_F(FailedConnect, LogsAFailedDisconnectLast) {
    const Forced closing(Call::Close, -1, EIO);
    EXPECT_EQ(open(), kNoByte);
    EXPECT_THAT(
        log_.lines(),
        ElementsAre(
            "SerialLink::connect: port: " + port_.path(),
            "LightDevice::openConnection: connect() succeed.",
            "LightDevice::executeString: Connect", "Send [tt*] ->", kNothingRead, kNothingRead,
            kNothingRead, "Error: LightDevice::openConnection: " + kNoByte.second,
            "Error: SerialLink::disconnect: close handle. Error 5 from tcsetattr: Input/output "
            "error",
            "Error: LightDevice::openConnection: disconnect failed: 0x80515003"));
    EXPECT_FALSE(device_.isConnected());
}

TEST_F(FailedConnect, IsPassedOnWhenNothingCanBeSent) {
    const Forced writing(Call::Write, -1, EIO);
    EXPECT_EQ(open(), Failure(0xA051501A,
                              "DriverException (0xa051501a): SerialLink::sendArray: "
                              "write."));
    EXPECT_FALSE(device_.isConnected());
}

TEST_F(FailedConnect, IsPassedOnWhenReadingFails) {
    const Forced reading(Call::Read, -1, EIO);
    EXPECT_EQ(open(), Failure(0xA0515019,
                              "DriverException (0xa0515019): SerialLink::recvArray: "
                              "read."));
}

TEST_F(FailedConnect, GivesNoHandleWhenThePortCannotBeSet) {
    const Forced setting(Call::SetAttributes, -1, EINVAL);
    EXPECT_EQ(device_.openConnection(kBaud), nullptr);
    EXPECT_THAT(log_.lines(),
                ElementsAre("SerialLink::connect: port: " + port_.path(),
                            "Error: SerialLink::connect: set tty attributes. Error 22 from "
                            "tcsetattr: Invalid argument",
                            "Error: LightDevice::openConnection: connect() failed: 2152812547",
                            "Error: SerialLink::~SerialLink: set tty attributes. Error 22 from "
                            "tcsetattr: Invalid argument"));
    EXPECT_FALSE(device_.isConnected());
    EXPECT_EQ(port_.terminal().openDescriptors(), 0U);
}

}  // namespace
