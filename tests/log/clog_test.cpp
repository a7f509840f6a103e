#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <string>

#include "log/log.h"
#include "tests/support/log_capture.h"

using orvex_test::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Clog, FormatsAsPrintfDoes) {
    LogCapture log_lines;
    clog(0x40u, "%s: %d of %u, 0x%X, %5.2f%%", "SerialLink", -3, 4000000000u, 0xBEEFu, 1.5);
    EXPECT_THAT(log_lines.lines(), ElementsAre("SerialLink: -3 of 4000000000, 0xBEEF,  1.50%"));
}

TEST(Clog, LogsWithTheGivenClass) {
    LogCapture log_lines(0x10);
    clog(0x10u, "kept %i", 1);
    clog(0x20u, "dropped %i", 2);
    EXPECT_THAT(log_lines.lines(), ElementsAre("Warning: kept 1"));
}

TEST(Clog, WithoutAClassIsInformation) {
    LogCapture log_lines(0x2);
    clog("kept %i", 1);
    ORVEX_SetLogBits(0x7D);
    clog("dropped %i", 2);
    EXPECT_THAT(log_lines.lines(), ElementsAre("kept 1"));
}

TEST(Clog, KeepsALongMessageWhole) {
    LogCapture log_lines;
    const std::string longest(10'000, 'x');
    clog(0x2u, "<%s>", longest.c_str());
    clog("<%s>", longest.c_str());
    const std::string line = "<" + longest + ">";
    EXPECT_THAT(log_lines.lines(), ElementsAre(line, line));
}

TEST(Clog, KeepsMessagesAroundCommonBufferSizesWhole) {
    LogCapture log_lines;
    for (const int length : {127, 128, 255, 256, 1023, 1024, 4095, 4096}) {
        clog(0x2u, "%*s", length, "end");
        const auto lines = log_lines.take();
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].size(), static_cast<std::size_t>(length));
        EXPECT_EQ(lines[0].substr(lines[0].size() - 3), "end");
    }
}

TEST(Clog, PassesAnEmptyMessage) {
    LogCapture log_lines;
    clog(0x2u, "%s", "");
    EXPECT_THAT(log_lines.lines(), ElementsAre(""));
}

TEST(Clog, EndsTheMessageAtItsFirstNul) {
    LogCapture log_lines;
    clog(0x2u, "before%cbehind", '\0');
    EXPECT_THAT(log_lines.lines(), ElementsAre("before"));
}

TEST(Clog, ThrowsWhenTheMessageCannotBeFormatted) {
    LogCapture log_lines;
    EXPECT_THROW(clog(0x2u, "%ls", L"\x20AC"), std::logic_error);
    EXPECT_THROW(clog("%ls", L"\x20AC"), std::logic_error);
    EXPECT_THAT(log_lines.lines(), IsEmpty());
}

TEST(Clog, FormatsEvenWhatIsNotLogged) {
    const LogCapture log_lines(0);
    EXPECT_THROW(clog(0x2u, "%ls", L"\x20AC"), std::logic_error);
}

TEST(Clog, ThrowsWhenTheMessageIsTooLong) {
    const LogCapture log_lines;
    try {
        clog(0x2u, "%*s", INT_MAX, "");
        FAIL() << "no exception";
    } catch (const std::length_error& e) {
        EXPECT_STREQ(e.what(), "clog: the message is too long");
    }
    EXPECT_THAT(log_lines.lines(), IsEmpty());
}

TEST(Clog, StillWorksAfterAFailure) {
    const LogCapture log_lines;
    EXPECT_THROW(clog(0x2u, "%ls", L"\x20AC"), std::logic_error);
    clog(0x2u, "%d", 12);
    EXPECT_THAT(log_lines.lines(), ElementsAre("12"));
}

}  // namespace
