#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "log/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/output_capture.h"
#include "tests/support/temporary_directory.h"

using orvex_test::contentsOf;
using orvex_test::LogCapture;
using orvex_test::LogSettings;
using orvex_test::OutputCapture;
using orvex_test::TemporaryDirectory;
using orvex_test::WorkingDirectory;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

/// A header block with "<time>" in the place of its time.
std::string withoutTime(std::string block) {
    const std::string label = "* log started at: ";
    const std::size_t time = block.find(label) + label.size();
    EXPECT_THAT(block.substr(time, 19),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
    return block.replace(time, 19, "<time>");
}

class LogHeader : public testing::Test {
  protected:
    LogHeader() { ORVEX_SetLogFile("/tmp/orvex.log"); }

    const LogSettings settings_;
};

TEST_F(LogHeader, GoesToStandardOutputWithANewline) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    logHeader();
    EXPECT_EQ(withoutTime(out.text()),
              "\n\n"
              "***************************************\n"
              "* log started at: <time> *\n"
              "* log bits: 0x7f                      *\n"
              "* log method: 0                       *\n"
              "* log callback: 0x0    *\n"
              "* log file: /tmp/orvex.log *\n"
              "***************************************\n");
    EXPECT_EQ(err.text(), "");
}

TEST_F(LogHeader, GoesToTheCallbackWithoutANewline) {
    LogCapture lines(0xABC);
    logHeader();
    const auto got = lines.take();
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(withoutTime(got[0]),
              "\n\n"
              "***************************************\n"
              "* log started at: <time> *\n"
              "* log bits: 0xabc                      *\n"
              "* log method: 2                       *\n"
              "* log callback: 0x1    *\n"
              "* log file: /tmp/orvex.log *\n"
              "***************************************");
}

TEST_F(LogHeader, GoesToTheFileWhoseNameItMakesAbsolute) {
    const TemporaryDirectory directory;
    const WorkingDirectory here(directory.path());
    ORVEX_SetLogFile("trace.log");
    ORVEX_SetLogMode(1);
    logHeader();
    EXPECT_EQ(withoutTime(contentsOf(directory.file("trace.log"))),
              "\n\n"
              "***************************************\n"
              "* log started at: <time> *\n"
              "* log bits: 0x7f                      *\n"
              "* log method: 1                       *\n"
              "* log callback: 0x0    *\n"
              "* log file: " +
                  directory.file("trace.log") +
                  " *\n"
                  "***************************************\n");
}

TEST_F(LogHeader, IsWrittenWhateverTheMaskAndWithoutAPrefix) {
    LogCapture lines(0);
    logHeader();
    ORVEX_SetLogBits(0x1000);
    logHeader();
    const auto got = lines.take();
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].substr(0, 4), "\n\n**");
    EXPECT_NE(got[0].find("* log bits: 0x0                      *\n"), std::string::npos);
    EXPECT_EQ(got[1].substr(0, 4), "\n\n**");
    EXPECT_NE(got[1].find("* log bits: 0x1000                      *\n"), std::string::npos);
}

TEST_F(LogHeader, IsDiscardedForAnUnknownMethod) {
    const LogCapture lines;
    const OutputCapture out(STDOUT_FILENO);
    ORVEX_SetLogMode(-1);
    logHeader();
    EXPECT_THAT(lines.lines(), IsEmpty());
    EXPECT_EQ(out.text(), "");
}

}  // namespace
