// A port's terminal settings as the link makes them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <termios.h>

#include <utility>

#include "tests/support/connected_link.h"
#include "tests/support/exceptions.h"

using orvex_test::ConnectedLink;
using orvex_test::Failure;
using orvex_test::failureOf;
using orvex_test::LogCapture;
using orvex_test::PseudoTerminal;
using orvex_test::sameSettings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Settings with every flag on that a raw port must not have, and others beside them.
termios cookedSettings(const PseudoTerminal& port) {
    termios settings = port.settings();
    settings.c_iflag = 0x1DEB | INPCK | IMAXBEL;
    settings.c_oflag = OPOST | ONLCR | OCRNL;
    settings.c_cflag |= PARENB | CSTOPB | CRTSCTS | HUPCL;
    settings.c_cflag &= ~static_cast<tcflag_t>(CREAD | CLOCAL);
    settings.c_lflag = 0x5B | ECHOK | IEXTEN;
    settings.c_cc[VMIN] = 9;
    settings.c_cc[VTIME] = 9;
    return settings;
}

TEST(PortSettings, AreRawAfterConnecting) {
    const PseudoTerminal port;
    port.apply(cookedSettings(port));
    const LogCapture log;
    SerialLink link(0);
    ASSERT_EQ(link.connect(port.path(), 9600), 0u);
    const termios settings = port.settings();
    EXPECT_EQ(settings.c_iflag & 0x1DEB, 0u);
    EXPECT_EQ(settings.c_oflag & 0x5, 0u);
    EXPECT_EQ(settings.c_cflag & 0x80000140, 0u);
    EXPECT_EQ(settings.c_cflag & 0x8B0, 0x8B0u);
    EXPECT_EQ(settings.c_lflag & 0x5B, 0u);
    EXPECT_EQ(settings.c_cc[VTIME], 5);
    EXPECT_EQ(settings.c_cc[VMIN], 0);
    EXPECT_EQ(settings.c_cflag & 0x100F, 0xDu);
}

TEST(PortSettings, KeepTheRestAfterConnecting) {
    const PseudoTerminal port;
    port.apply(cookedSettings(port));
    const termios before = port.settings();
    const LogCapture log;
    SerialLink link(0);
    ASSERT_EQ(link.connect(port.path(), 9600), 0u);
    const termios settings = port.settings();
    EXPECT_EQ(settings.c_iflag, tcflag_t{INPCK | IMAXBEL});
    EXPECT_EQ(settings.c_oflag, tcflag_t{OCRNL});
    EXPECT_EQ(settings.c_lflag, tcflag_t{ECHOK | IEXTEN});
    EXPECT_EQ(settings.c_cflag & HUPCL, tcflag_t{HUPCL});
    for (const int key : {VINTR, VQUIT, VERASE, VKILL, VEOF, VSTART, VSTOP, VSUSP}) {
        EXPECT_EQ(settings.c_cc[key], before.c_cc[key]) << key;
    }
}

TEST(PortSettings, HaveTheSpeedOfTheConnection) {
    constexpr std::pair<unsigned, unsigned> kSpeeds[] = {{9600, 0xD},      {19200, 0xE},
                                                         {115200, 0x1002}, {115201, 0x1002},
                                                         {9599, 0xC},      {5000000, 0x100F}};
    const PseudoTerminal port;
    const LogCapture log;
    SerialLink link(0);
    for (const auto& [baud, constant] : kSpeeds) {
        ASSERT_EQ(link.connect(port.path(), baud), 0u);
        const termios settings = port.settings();
        EXPECT_EQ(cfgetispeed(&settings), constant) << baud;
        EXPECT_EQ(cfgetospeed(&settings), constant) << baud;
    }
}

class LinkSettings : public ConnectedLink {
  protected:
    /// Gives the port values that every change of a time-out replaces.
    void disturbTimeout() {
        termios settings = port_.settings();
        settings.c_cc[VTIME] = 99;
        settings.c_cc[VMIN] = 7;
        port_.apply(settings);
    }

    void expectTimeout(int tenths) {
        EXPECT_EQ(port_.settings().c_cc[VTIME], tenths);
        EXPECT_EQ(port_.settings().c_cc[VMIN], 0);
    }
};

TEST_F(LinkSettings, HaveATimeoutInTenthsOfASecondRoundedDown) {
    constexpr std::pair<unsigned, int> kTimeouts[] = {
        {0, 0}, {50, 0}, {99, 0}, {100, 1}, {199, 1}, {1'000, 10}, {25'500, 255}, {25'599, 255}};
    for (const auto& [ms, tenths] : kTimeouts) {
        disturbTimeout();
        link_.setTimeout(ms);
        expectTimeout(tenths);
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinkSettings, HaveATimeoutThatWrapsAround) {
    constexpr std::pair<unsigned, int> kTimeouts[] = {
        {25'600, 0}, {25'700, 1}, {30'000, 44}, {51'200, 0}, {4'294'967'295, 40}};
    for (const auto& [ms, tenths] : kTimeouts) {
        disturbTimeout();
        link_.setTimeout(ms);
        expectTimeout(tenths);
    }
}

TEST_F(LinkSettings, HaveADefaultTimeout) {
    link_.setTimeout(3'000);
    disturbTimeout();
    link_.resetTimeouts();
    expectTimeout(5);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinkSettings, ChangeNothingButTheTimeout) {
    termios expected = port_.settings();
    link_.setTimeout(3'000);
    expected.c_cc[VTIME] = 30;
    EXPECT_TRUE(sameSettings(port_.settings(), expected));
    link_.resetTimeouts();
    expected.c_cc[VTIME] = 5;
    EXPECT_TRUE(sameSettings(port_.settings(), expected));
}

TEST_F(LinkSettings, ChangeNothingButTheSpeed) {
    termios expected = port_.settings();
    link_.setTimeout(3'000);
    link_.setBaudrate(115'200);
    expected.c_cc[VTIME] = 30;
    expected.c_cflag = (expected.c_cflag & ~tcflag_t{0x100F}) | 0x1002;
    EXPECT_TRUE(sameSettings(port_.settings(), expected));
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinkSettings, RoundTheSpeedDown) {
    link_.setBaudrate(12'345);
    EXPECT_EQ(link_.getBaudrate(), 9600u);
    link_.setBaudrate(9'000'000);
    EXPECT_EQ(link_.getBaudrate(), 4'000'000u);
    link_.setBaudrate(49);
    EXPECT_EQ(link_.getBaudrate(), 0u);
}

TEST_F(LinkSettings, TellTheSpeed) {
    EXPECT_EQ(link_.getBaudrate(), 9600u);
    for (const unsigned baud :
         {0u,       50u,      75u,      110u,     134u,     150u,     200u,    300u,
          600u,     1200u,    1800u,    2400u,    4800u,    9600u,    19200u,  38400u,
          57600u,   115200u,  230400u,  460800u,  500000u,  576000u,  921600u, 1000000u,
          1152000u, 1500000u, 2000000u, 2500000u, 3000000u, 3500000u, 4000000u}) {
        link_.setBaudrate(baud);
        EXPECT_EQ(link_.getBaudrate(), baud);
    }
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinkSettings, TellASpeedThatSomeoneElseSet) {
    termios settings = port_.settings();
    cfsetispeed(&settings, B230400);
    cfsetospeed(&settings, B230400);
    port_.apply(settings);
    EXPECT_EQ(link_.getBaudrate(), 230400u);
}

TEST_F(LinkSettings, AreRestoredWhateverWasSet) {
    EXPECT_EQ(link_.disconnect(), 0u);
    port_.apply(cookedSettings(port_));
    const termios original = port_.settings();
    ASSERT_EQ(link_.connect(port_.path(), 9600), 0u);
    link_.setTimeout(3'000);
    link_.setBaudrate(115'200);
    EXPECT_EQ(link_.disconnect(), 0u);
    EXPECT_TRUE(sameSettings(port_.settings(), original));
}

/// The one way in which all operations on settings fail on a port that is gone.
Failure unreadable(const std::string& operation) {
    return {0x80515003u, "DriverException (0x80515003): SerialLink::" + operation + ": tcgetattr."};
}

TEST_F(LinkSettings, CannotBeReadOnAPortThatIsGone) {
    port_.hangUp();
    EXPECT_EQ(failureOf([&] { link_.setTimeout(100); }), unreadable("setTimeout"));
    EXPECT_EQ(failureOf([&] { link_.resetTimeouts(); }), unreadable("resetTimeouts"));
    EXPECT_EQ(failureOf([&] { link_.setBaudrate(9600); }), unreadable("setBaudrate"));
    EXPECT_EQ(failureOf([&] { static_cast<void>(link_.getBaudrate()); }),
              unreadable("getBaudrate"));
    EXPECT_THAT(
        log_.lines(),
        ElementsAre("Error: SerialLink::setTimeout: Error 5 from tcgetattr: Input/output error",
                    "Error: SerialLink::resetTimeouts: Error 5 from tcgetattr: Input/output error",
                    "Error: SerialLink::setBaudrate: Error 5 from tcgetattr: Input/output error",
                    "Error: SerialLink::getBaudrate: Error 5 from tcgetattr: Input/output error"));
}

}  // namespace
