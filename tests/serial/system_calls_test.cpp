// What a serial link asks of the system, and failures that no terminal produces.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "tests/support/connected_link.h"
#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"

using orvex_test::Call;
using orvex_test::ConnectedLink;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Forced;
using orvex_test::LogCapture;
using orvex_test::PseudoTerminal;
using orvex_test::Recording;
using orvex_test::SkippedPauses;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

TEST(SerialLink, OpensThePortForReadingAndWritingAlone) {
    const PseudoTerminal port;
    const LogCapture log;
    SerialLink link(0);
    const Recording recording;
    EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    EXPECT_THAT(recording.openFlags, ElementsAre(O_RDWR));
}

TEST(SerialLink, TellsWhyAPortCannotBeOpened) {
    const LogCapture log;
    SerialLink link(0);
    const Forced forced(Call::Open, -1, EACCES);
    EXPECT_EQ(link.connect("/dev/ttyACM0", 9600), 0xA0515007u);
    EXPECT_FALSE(link.isConnected());
    EXPECT_THAT(log.lines(),
                ElementsAre("SerialLink::connect: port: /dev/ttyACM0",
                            "Error: SerialLink::connect: open port: /dev/ttyACM0",
                            "Error: SerialLink::connect: Error 13 from open: Permission denied"));
}

TEST(SerialLink, KeepsAPortWhoseSettingsCannotBeRead) {
    const PseudoTerminal port;
    LogCapture log;
    SerialLink link(0);
    {
        const Forced forced(Call::GetAttributes, -1, EIO);
        const Recording recording;
        EXPECT_EQ(link.connect(port.path(), 9600), 0x80515003u);
        EXPECT_THAT(recording.settings, IsEmpty());
    }
    EXPECT_TRUE(link.isConnected());
    EXPECT_EQ(port.openDescriptors(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre("SerialLink::connect: port: " + port.path(),
                                         "Error: SerialLink::connect: "
                                         "Error 5 from tcgetattr: Input/output error"));
}

TEST(SerialLink, KeepsAPortWhoseSettingsCannotBeChanged) {
    const PseudoTerminal port;
    LogCapture log;
    SerialLink link(0);
    {
        const Forced forced(Call::SetAttributes, -1, EINVAL);
        EXPECT_EQ(link.connect(port.path(), 9600), 0x80515003u);
    }
    EXPECT_TRUE(link.isConnected());
    EXPECT_EQ(port.openDescriptors(), 1u);
    EXPECT_THAT(log.lines(), ElementsAre("SerialLink::connect: port: " + port.path(),
                                         "Error: SerialLink::connect: set tty attributes. "
                                         "Error 22 from tcsetattr: Invalid argument"));
}

class FailingLink : public ConnectedLink {};

TEST_F(FailingLink, IsDisconnectedAfterAFailedClose) {
    const Forced forced(Call::Close, -1, EIO);
    const SkippedPauses pauses;
    EXPECT_EQ(link_.disconnect(), 0x80515003u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_THAT(pauses.asked, IsEmpty());
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::disconnect: close handle. "
                                          "Error 5 from tcsetattr: Input/output error"));
}

TEST_F(FailingLink, IsClosedThoughItsSettingsCannotBeRestored) {
    const Forced forced(Call::SetAttributes, -1, EIO);
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_EQ(port_.openDescriptors(), 0u);
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::disconnect: set tty attributes. "
                                          "Error 5 from tcsetattr: Input/output error"));
}

TEST_F(FailingLink, LogsBothFailuresOfADisconnection) {
    const Forced settings(Call::SetAttributes, -1, EINVAL);
    const Forced closing(Call::Close, -1, EBADF);
    EXPECT_EQ(link_.disconnect(), 0x80515003u);
    EXPECT_FALSE(link_.isConnected());
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::disconnect: set tty attributes. "
                                          "Error 22 from tcsetattr: Invalid argument",
                                          "Error: SerialLink::disconnect: close handle. "
                                          "Error 9 from tcsetattr: Bad file descriptor"));
}

TEST_F(FailingLink, ClosesAnEarlierPortSilently) {
    const PseudoTerminal other;
    const Forced forced(Call::Close, -1, EIO);
    EXPECT_EQ(link_.connect(other.path(), 9600), 0u);
    EXPECT_TRUE(link_.isConnected());
    EXPECT_THAT(log_.lines(), ElementsAre("SerialLink::connect: port: " + other.path()));
}

TEST(SerialLink, LogsBothFailuresAtItsEnd) {
    const PseudoTerminal port;
    LogCapture log;
    auto link = std::make_unique<SerialLink>('\0');
    EXPECT_EQ(link->connect(port.path(), 9600), 0u);
    log.take();
    const Forced settings(Call::SetAttributes, -1, EINVAL);
    const Forced closing(Call::Close, -1, EIO);
    const SkippedPauses pauses;
    link.reset();
    EXPECT_EQ(closing.count(), 1);
    EXPECT_THAT(pauses.asked, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre("Error: SerialLink::~SerialLink: set tty attributes. "
                                         "Error 22 from tcsetattr: Invalid argument",
                                         "Error: SerialLink::~SerialLink: close handle. "
                                         "Error 5 from tcsetattr: Input/output error"));
}

TEST_F(FailingLink, CannotChangeItsSettings) {
    const Forced forced(Call::SetAttributes, -1, EINVAL);
    const auto unchanged = [](const std::string& operation) {
        return Failure(0x80515003u,
                       "DriverException (0x80515003): SerialLink::" + operation + ": tcsetattr.");
    };
    EXPECT_EQ(failureOf([&] { link_.setTimeout(100); }), unchanged("setTimeout"));
    EXPECT_EQ(failureOf([&] { link_.resetTimeouts(); }), unchanged("resetTimeouts"));
    EXPECT_EQ(failureOf([&] { link_.setBaudrate(9600); }), unchanged("setBaudrate"));
    const auto line = [](const std::string& operation) {
        return "Error: SerialLink::" + operation +
               ": set tty attributes. Error 22 from tcsetattr: Invalid argument";
    };
    EXPECT_THAT(log_.lines(),
                ElementsAre(line("setTimeout"), line("resetTimeouts"), line("setBaudrate")));
}

TEST_F(FailingLink, FailsToRead) {
    const Forced forced(Call::Read, -1, EIO);
    const Failure failed = {0xA0515019u,
                            "DriverException (0xa0515019): SerialLink::recvArray: read."};
    char byte = 0;
    EXPECT_EQ(failureOf([&] { link_.recvArray(&byte, 1); }), failed);
    EXPECT_EQ(failureOf([&] { link_.recvChar(); }), failed);
    EXPECT_EQ(forced.count(), 2);  // No further attempt after a failure.
    const char* const line = "Error: SerialLink::recvArray: Error 5 from read: Input/output error";
    EXPECT_THAT(log_.lines(), ElementsAre(line, line));
}

TEST_F(FailingLink, DoesNotReadWhenAskedForNothing) {
    const Forced forced(Call::Read, -1, EIO);
    char byte = 0;
    EXPECT_EQ(link_.recvArray(&byte, 0), 0u);
    EXPECT_EQ(forced.count(), 0);
}

TEST_F(FailingLink, WarnsOfMoreThanOneCharacter) {
    const Forced forced(Call::Read, 2);
    EXPECT_EQ(link_.recvChar(), '\0');
    EXPECT_THAT(log_.lines(),
                ElementsAre("Warning: SerialLink::recvChar: returned with len > 1: 2"));
}

TEST_F(FailingLink, WritesInOneCall) {
    const Forced forced(Call::Write, 3);
    EXPECT_EQ(failureOf([&] { link_.sendArray("abcde", 5); }),
              Failure(0xA051501Au,
                      "DriverException (0xa051501a): SerialLink::sendArray: Wrong sent length: 3"));
    EXPECT_EQ(forced.count(), 1);
    EXPECT_THAT(log_.lines(),
                ElementsAre("Error: SerialLink::sendArray: written bytes: 3 != requested len: 5"));
}

TEST_F(FailingLink, RefusesAWriteOfNothingWhereSomethingWasAskedFor) {
    const Forced forced(Call::Write, 0);
    EXPECT_EQ(failureOf([&] { link_.sendChar('a'); }),
              Failure(0xA051501Au,
                      "DriverException (0xa051501a): SerialLink::sendArray: Wrong sent length: 0"));
    EXPECT_THAT(log_.lines(),
                ElementsAre("Error: SerialLink::sendArray: written bytes: 0 != requested len: 1"));
}

TEST_F(FailingLink, FailsToWrite) {
    const Forced forced(Call::Write, -1, ENXIO);
    EXPECT_EQ(failureOf([&] { link_.sendArray("abc", 3); }),
              Failure(0xA051501Au, "DriverException (0xa051501a): SerialLink::sendArray: write."));
    EXPECT_EQ(forced.count(), 1);
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::sendArray: "
                                          "Error 6 from write: No such device or address"));
}

TEST_F(FailingLink, PurgesBothDirections) {
    const Recording recording;
    link_.purge();
    EXPECT_THAT(recording.controls, ElementsAre(Pair(0x540Bu, 2u)));
}

TEST_F(FailingLink, FailsToPurge) {
    const Forced forced(Call::Ioctl, -1, EIO);
    EXPECT_EQ(failureOf([&] { link_.purge(); }),
              Failure(0x80515003u, "DriverException (0x80515003): SerialLink::purge: read."));
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::purge: "
                                          "Error 5 from ioctl: Input/output error"));
}

TEST_F(FailingLink, TellsTheInputSpeedWhenTheSpeedsDiffer) {
    const Forced input(Call::GetInputSpeed, 0xD);
    const Forced output(Call::GetOutputSpeed, 0x1002);
    EXPECT_EQ(link_.getBaudrate(), 9600u);
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::getBaudrate: input baudrate 0015 "
                                          "!= ouput baudrate: 0010002"));
}

TEST_F(FailingLink, TellsNoSpeedForAnUnknownOne) {
    const Forced input(Call::GetInputSpeed, 0x1000);
    const Forced output(Call::GetOutputSpeed, 0x1000);
    EXPECT_EQ(link_.getBaudrate(), 0u);
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::getBaudrate: define 0010000 does not "
                                          "match any baudrate"));
}

TEST_F(FailingLink, LogsDifferentAndUnknownSpeeds) {
    const Forced input(Call::GetInputSpeed, 0x1000);
    const Forced output(Call::GetOutputSpeed, 0xD);
    EXPECT_EQ(link_.getBaudrate(), 0u);
    EXPECT_THAT(log_.lines(), ElementsAre("Error: SerialLink::getBaudrate: input baudrate 0010000 "
                                          "!= ouput baudrate: 0015",
                                          "Error: SerialLink::getBaudrate: define 0010000 does not "
                                          "match any baudrate"));
}

}  // namespace
