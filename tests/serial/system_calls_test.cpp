// The system calls of a serial link: their arguments, and failures that no terminal produces.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <iterator>
#include <memory>

#include "tests/support/connected_link.h"
#include "tests/support/exceptions.h"
#include "tests/support/forced_calls.h"

using orvex_test::Call;
using orvex_test::ConnectedLink;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::Forced;
using orvex_test::ForcedSettings;
using orvex_test::LogCapture;
using orvex_test::PseudoTerminal;
using orvex_test::Recording;
using orvex_test::SkippedPauses;
using testing::AllOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using std::chrono_literals::operator""ms;

namespace {

/// Settings with every bit and every control character the same, at 9600 baud.
termios uniformSettings(bool set) {
    termios settings{};
    settings.c_iflag = set ? 0x7FFFFFFF : 0;
    settings.c_oflag = set ? 0xFFFFFFFF : 0;
    settings.c_cflag = set ? 0xFFFFEFFD : 0xD;
    settings.c_lflag = set ? 0xFFFFFFFF : 0;
    std::fill(std::begin(settings.c_cc), std::end(settings.c_cc), cc_t{set ? cc_t{0xFF} : cc_t{0}});
    return settings;
}

/// The settings that connecting at 9600 baud makes of the given ones.
termios connectedSettings(const termios& found) {
    const PseudoTerminal port;
    const LogCapture log;
    const ForcedSettings forced(found);
    const Recording recording;
    SerialLink link(0);
    EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    EXPECT_EQ(recording.settings.size(), 1u);
    EXPECT_EQ(recording.settings.at(0).first, TCSANOW);
    return recording.settings.at(0).second;
}

TEST(PortSettings, ClearWhatARawPortMustNotHave) {
    const termios settings = connectedSettings(uniformSettings(true));
    EXPECT_EQ(settings.c_iflag, 0x7FFFE214u);
    EXPECT_EQ(settings.c_oflag, 0xFFFFFFFAu);
    EXPECT_EQ(settings.c_cflag, 0x7FFFEEBDu);
    EXPECT_EQ(settings.c_lflag, 0xFFFFFFA4u);
    for (int i = 0; i < NCCS; ++i) {
        EXPECT_EQ(settings.c_cc[i], i == VTIME ? 5 : i == VMIN ? 0 : 0xFF) << i;
    }
}

TEST(PortSettings, SetOnlyWhatARawPortMustHave) {
    const termios settings = connectedSettings(uniformSettings(false));
    EXPECT_EQ(settings.c_iflag, 0u);
    EXPECT_EQ(settings.c_oflag, 0u);
    EXPECT_EQ(settings.c_cflag, 0x8BDu);
    EXPECT_EQ(settings.c_lflag, 0u);
    for (int i = 0; i < NCCS; ++i) {
        EXPECT_EQ(settings.c_cc[i], i == VTIME ? 5 : 0) << i;
    }
}

TEST(PortSettings, AreWrittenBackAsTheyWereRead) {
    const PseudoTerminal port;
    const LogCapture log;
    const termios original = uniformSettings(true);
    SerialLink link(0);
    {
        const ForcedSettings forced(original);
        EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    }
    const Recording recording;
    EXPECT_EQ(link.disconnect(), 0u);
    ASSERT_EQ(recording.settings.size(), 1u);
    EXPECT_EQ(recording.settings[0].first, TCSANOW);
    EXPECT_TRUE(orvex_test::sameSettings(recording.settings[0].second, original));
}

TEST(PortSettings, AreAppliedAtOnce) {
    const PseudoTerminal port;
    const LogCapture log;
    SerialLink link(0);
    EXPECT_EQ(link.connect(port.path(), 9600), 0u);
    const Recording recording;
    link.setTimeout(100);
    link.resetTimeouts();
    link.setBaudrate(115200);
    ASSERT_EQ(recording.settings.size(), 3u);
    for (const auto& [action, settings] : recording.settings) {
        EXPECT_EQ(action, TCSANOW);
    }
}

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

class PausingLink : public ConnectedLink {
  protected:
    SkippedPauses pauses_;
};

TEST_F(PausingLink, PausesTenMillisecondsToDisconnect) {
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_THAT(pauses_.asked, ElementsAre(10ms));
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_THAT(pauses_.asked, ElementsAre(10ms, 10ms));
}

TEST_F(PausingLink, PausesTheRemainingTimeAfterAnInterruption) {
    pauses_.during = [](std::size_t number) { return number < 3 ? 4ms : 0ms; };
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_THAT(pauses_.asked, ElementsAre(10ms, 4ms, 4ms));
}

TEST_F(PausingLink, PausesAfterEachVainAttemptToReceive) {
    link_.setTimeout(0);
    EXPECT_EQ(failureOf([&] { link_.recvChar(); }).first, 0xA0515019u);
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 200ms, 200ms));
}

TEST_F(PausingLink, ReceivesAtItsThirdAttempt) {
    link_.setTimeout(0);
    pauses_.during = [this](std::size_t number) {
        if (number == 2) {
            port_.answer("xy");
        }
        return 0ms;
    };
    EXPECT_EQ(link_.recvChar(), 'x');
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 200ms));
    EXPECT_EQ(port_.unread(), 1u);
}

TEST_F(PausingLink, PausesTheRemainingTimeBetweenAttempts) {
    link_.setTimeout(0);
    pauses_.during = [this](std::size_t number) {
        port_.answer(number == 2 ? "x" : "");
        return number == 1 ? 150ms : 0ms;
    };
    EXPECT_EQ(link_.recvChar(), 'x');
    EXPECT_THAT(pauses_.asked, ElementsAre(200ms, 150ms));
}

}  // namespace
