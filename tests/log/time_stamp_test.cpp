#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <sstream>

#include "log/log.h"
#include "log/logger.h"
#include "tests/support/log_capture.h"

using orvex_test::LogCapture;
using testing::ElementsAre;
using testing::MatchesRegex;

namespace {

constexpr const char* kStamp = R"(\[[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\] )";

std::string stamp() {
    std::ostringstream text;
    buildLogMessage(text, 0x2);
    return text.str();
}

/// A moment's stamp in a zone that is ahead of universal time.
std::string stampOf(std::time_t moment, std::time_t secondsAhead) {
    moment += secondsAhead;
    std::tm universal{};
    gmtime_r(&moment, &universal);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "[%Y-%m-%d %H:%M:%S] ", &universal);
    return text.data();
}

TEST(TimeStamp, BeginsEveryLineWhenEnabled) {
    LogCapture lines(0x1000 | 0x1 | 0x2 | 0x10);
    log(0x1, "text");
    log(0x2, "text");
    log(0x11, "text");
    clog(0x2u, "text %d", 5);
    const std::string beginning = kStamp;
    EXPECT_THAT(lines.lines(), ElementsAre(MatchesRegex(beginning + "Error: text"),
                                           MatchesRegex(beginning + "text"),
                                           MatchesRegex(beginning + "Error: Warning: text"),
                                           MatchesRegex(beginning + "text 5")));
}

TEST(TimeStamp, BeginsALoggersLineOnce) {
    const LogCapture lines(0x1000 | 0x1);
    Logger(0x1) << "te"
                << "xt";
    EXPECT_THAT(lines.lines(), ElementsAre(MatchesRegex(std::string(kStamp) + "Error: text")));
}

TEST(TimeStamp, IsAbsentByDefault) {
    const LogCapture lines;
    log(0x1002, "text");
    EXPECT_THAT(lines.lines(), ElementsAre("text"));
}

TEST(TimeStamp, IsLocalTime) {
    const LogCapture lines(0x1000 | 0x2);
    ASSERT_EQ(::setenv("TZ", "UTC-5:30", 1), 0);  // Five and a half hours ahead.
    ::tzset();
    const std::time_t before = std::time(nullptr);
    const std::string written = stamp();
    const std::time_t after = std::time(nullptr);
    EXPECT_GE(written, stampOf(before, 19'800));
    EXPECT_LE(written, stampOf(after, 19'800));
}

}  // namespace
