// The settings that a link asks for, bit by bit: a pseudo-terminal does not take them all.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <termios.h>

#include <algorithm>
#include <iterator>

#include "serial/serial_link.h"
#include "tests/support/forced_calls.h"
#include "tests/support/log_capture.h"
#include "tests/support/pseudo_terminal.h"

using orvex_test::ForcedSettings;
using orvex_test::LogCapture;
using orvex_test::PseudoTerminal;
using orvex_test::Recording;

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

}  // namespace
