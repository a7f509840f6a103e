// The class of a message decides whether it is logged, how its line begins and where it goes.
#include "log/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>

#include "tests/support/log_capture.h"
#include "tests/support/output_capture.h"
#include "tests/support/temporary_directory.h"

using orvex_test::contentsOf;
using orvex_test::LogCapture;
using orvex_test::OutputCapture;
using orvex_test::TemporaryDirectory;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(LogClasses, HaveTheirBits) {
    EXPECT_EQ(LOG_BIT_ERROR, 0x1u);
    EXPECT_EQ(LOG_BIT_INFO, 0x2u);
    EXPECT_EQ(LOG_BIT_RESERVED, 0x4u);
    EXPECT_EQ(LOG_BIT_SERIAL, 0x8u);
    EXPECT_EQ(LOG_BIT_WARNING, 0x10u);
    EXPECT_EQ(LOG_BIT_DETAIL, 0x20u);
    EXPECT_EQ(LOG_BIT_TRAFFIC, 0x40u);
    EXPECT_EQ(LOG_BIT_TIMESTAMP, 0x1000u);
}

TEST(LogMethods, HaveTheirNumbers) {
    EXPECT_EQ(LOG_METHOD_STDOUT, 0);
    EXPECT_EQ(LOG_METHOD_FILE, 1);
    EXPECT_EQ(LOG_METHOD_CALLBACK, 2);
}

TEST(Log, WritesAMessageOfEveryDefaultClass) {
    LogCapture log_lines;
    log(0x1, "error");
    log(0x2, "information");
    log(0x4, "reserved");
    log(0x8, "serial");
    log(0x10, "warning");
    log(0x20, "detail");
    log(0x40, "traffic");
    EXPECT_THAT(log_lines.lines(), ElementsAre("Error: error", "information", "reserved", "serial",
                                               "Warning: warning", "detail", "traffic"));
}

TEST(Log, DropsAMessageWhoseClassIsDisabled) {
    LogCapture log_lines(0x7D);
    log(0x2, "dropped");
    log(0x8, "kept");
    EXPECT_THAT(log_lines.lines(), ElementsAre("kept"));
}

TEST(Log, DropsAMessageOfAnUnknownClass) {
    LogCapture log_lines;
    log(0x80, "dropped");
    log(0u, "dropped");
    EXPECT_THAT(log_lines.lines(), IsEmpty());
}

TEST(Log, WritesAMessageOnceWhenAnyOfItsClassesIsEnabled) {
    LogCapture log_lines(0x20);
    log(0x22, "kept");
    log(0x0A, "dropped");
    EXPECT_THAT(log_lines.lines(), ElementsAre("kept"));
}

TEST(Log, PrefixesByTheMessageNotByTheMask) {
    LogCapture log_lines(0x10);
    log(0x11, "x");
    EXPECT_THAT(log_lines.lines(), ElementsAre("Error: Warning: x"));
}

TEST(Log, WithoutAClassIsInformation) {
    LogCapture log_lines(0x2);
    log("kept");
    ORVEX_SetLogBits(0x7D);
    log("dropped");
    EXPECT_THAT(log_lines.lines(), ElementsAre("kept"));
}

TEST(LogErr, IsAnError) {
    LogCapture log_lines(0x1);
    logerr("kept");
    ORVEX_SetLogBits(0x7E);
    logerr("dropped");
    EXPECT_THAT(log_lines.lines(), ElementsAre("Error: kept"));
}

TEST(Log, IsSilencedByAnEmptyMask) {
    LogCapture log_lines(0);
    log(0x7F, "dropped");
    logerr("dropped");
    EXPECT_THAT(log_lines.lines(), IsEmpty());
}

TEST(Log, IsSilentWithTheTimeStampAlone) {
    LogCapture log_lines(0x1000);
    log(0x7F, "dropped");
    EXPECT_THAT(log_lines.lines(), IsEmpty());
}

TEST(Log, PassesAnEmptyMessage) {
    LogCapture log_lines;
    log(0x2, "");
    EXPECT_THAT(log_lines.lines(), ElementsAre(""));
}

TEST(BuildLogMessage, WritesThePrefixOfAClass) {
    const orvex_test::LogSettings settings;
    const auto prefix = [](unsigned level) {
        std::ostringstream text;
        buildLogMessage(text, level);
        return text.str();
    };
    EXPECT_EQ(prefix(0x1), "Error: ");
    EXPECT_EQ(prefix(0x10), "Warning: ");
    EXPECT_EQ(prefix(0x11), "Error: Warning: ");
    EXPECT_EQ(prefix(0x6E), "");
    ORVEX_SetLogBits(0);
    EXPECT_EQ(prefix(0x7F), "Error: Warning: ");
}

/// Both output streams, with the log's default settings.
class LogOutput : public testing::Test {
  protected:
    const orvex_test::LogSettings settings_;
    const OutputCapture out_{STDOUT_FILENO};
    const OutputCapture err_{STDERR_FILENO};
};

TEST_F(LogOutput, IsTheMessageAndANewlineByDefault) {
    log(0x2, "first");
    log(0x40, "second");
    EXPECT_EQ(out_.text(), "first\nsecond\n");
    EXPECT_EQ(err_.text(), "");
}

TEST_F(LogOutput, OfErrorsIsStandardError) {
    log(0x11, "x");
    logerr("y");
    EXPECT_EQ(err_.text(), "Error: Warning: x\nError: y\n");
    EXPECT_EQ(out_.text(), "");
}

TEST_F(LogOutput, OfErrorsIsStandardErrorWhenOnlyAnotherClassIsEnabled) {
    ORVEX_SetLogBits(0x20);
    log(0x21, "x");
    EXPECT_EQ(err_.text(), "Error: x\n");
    EXPECT_EQ(out_.text(), "");
}

TEST_F(LogOutput, OfWarningsIsStandardOutput) {
    log(0x10, "x");
    EXPECT_EQ(out_.text(), "Warning: x\n");
    EXPECT_EQ(err_.text(), "");
}

TEST_F(LogOutput, IsEmptyWhenLinesGoToAFile) {
    const TemporaryDirectory directory;
    ORVEX_SetLogFile(directory.file("log").c_str());
    ORVEX_SetLogMode(1);
    log(0x2, "information");
    log(0x1, "error");
    EXPECT_EQ(contentsOf(directory.file("log")), "information\nError: error\n");
    EXPECT_EQ(out_.text() + err_.text(), "");
}

TEST_F(LogOutput, IsEmptyWhenLinesGoToACallback) {
    const LogCapture log_lines;
    log(0x1, "x");
    EXPECT_THAT(log_lines.lines(), ElementsAre("Error: x"));
    EXPECT_EQ(out_.text() + err_.text(), "");
}

TEST_F(LogOutput, IsEmptyForAnUnknownMethod) {
    const TemporaryDirectory directory;
    const LogCapture log_lines;
    ORVEX_SetLogFile(directory.file("log").c_str());
    for (const int method : {3, -1, 7}) {
        ORVEX_SetLogMode(method);
        EXPECT_NO_THROW(log(0x2, "discarded"));
        EXPECT_NO_THROW(log(0x1, "discarded"));
    }
    EXPECT_EQ(out_.text() + err_.text(), "");
    EXPECT_THAT(log_lines.lines(), IsEmpty());
    EXPECT_EQ(contentsOf(directory.file("log")), "");
}

}  // namespace
