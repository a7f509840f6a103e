#include "log/logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <ios>
#include <mutex>
#include <stdexcept>
#include <thread>

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
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(Logger, WritesOneLineAtItsEnd) {
    LogCapture lines;
    {
        Logger message(0x2);
        message << "call"
                << ": " << 12;
        EXPECT_THAT(lines.lines(), IsEmpty());
    }
    EXPECT_THAT(lines.lines(), ElementsAre("call: 12"));
}

TEST(Logger, StreamsAnyValueAsAStreamDoes) {
    LogCapture lines;
    Logger(0x2) << std::string("s") << 'c' << -1 << 2u << 1.5 << true << std::hex << 255;
    EXPECT_THAT(lines.lines(), ElementsAre("sc-121.51ff"));
}

TEST(Logger, ReturnsItselfFromAnInsertion) {
    const LogCapture lines;
    Logger message(0x2);
    EXPECT_EQ(&(message << 1), &message);
}

TEST(Logger, PrefixesByItsClass) {
    LogCapture lines;
    Logger(0x1) << "x";
    Logger(0x10) << "x";
    Logger(0x11) << "x";
    Logger(0x20) << "x";
    EXPECT_THAT(lines.lines(), ElementsAre("Error: x", "Warning: x", "Error: Warning: x", "x"));
}

TEST(Logger, DropsWhatIsInsertedWhileItsClassIsDisabled) {
    LogCapture lines(0x2);
    {
        Logger message(0x2);
        message << "a";
        ORVEX_SetLogBits(0x7D);
        message << "b";
        ORVEX_SetLogBits(0x2);
        message << "c";
    }
    EXPECT_THAT(lines.lines(), ElementsAre("ac"));
}

TEST(Logger, WritesWhatWasInsertedBeforeItsClassWasDisabled) {
    LogCapture lines;
    {
        Logger message(0x1);
        message << "x";
        ORVEX_SetLogBits(0);
    }
    EXPECT_THAT(lines.lines(), ElementsAre("Error: x"));
}

TEST(Logger, WritesNothingWhileEverythingIsDisabled) {
    LogCapture lines(0);
    Logger(0x7F) << "dropped";
    EXPECT_THAT(lines.lines(), IsEmpty());
}

TEST(Logger, WritesNothingWhenNothingWasInserted) {
    LogCapture lines;
    { const Logger message(0x1); }
    Logger(0x1) << "" << std::string();
    EXPECT_THAT(lines.lines(), IsEmpty());
}

TEST(Logger, FlushesAMessageOnce) {
    LogCapture lines;
    {
        Logger message(0x2);
        message << "x";
        message.flush();
        EXPECT_THAT(lines.lines(), ElementsAre("x"));
        message.flush();
    }
    EXPECT_THAT(lines.lines(), ElementsAre("x"));
}

TEST(Logger, BuildsAnotherMessageAfterAFlush) {
    LogCapture lines;
    Logger message(0x1);
    message << "first";
    message.flush();
    message << "second";
    message.flush();
    EXPECT_THAT(lines.lines(), ElementsAre("Error: first", "Error: second"));
}

TEST(Logger, RecoversFromAFailedInsertionWithAFlush) {
    LogCapture lines;
    Logger message(0x2);
    message << "first" << static_cast<const char*>(nullptr) << "lost";
    message.flush();
    message << "second";
    message.flush();
    EXPECT_THAT(lines.lines(), ElementsAre("first", "second"));
}

TEST(Logger, WritesErrorsToStandardOutputToo) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    Logger(0x1) << "x";
    Logger(0x2) << "y";
    EXPECT_EQ(out.text(), "Error: x\ny\n");
    EXPECT_EQ(err.text(), "");
}

TEST(Logger, AppendsToTheLogFile) {
    const LogSettings settings;
    const TemporaryDirectory directory;
    ORVEX_SetLogFile(directory.file("log").c_str());
    ORVEX_SetLogMode(1);
    Logger(0x1) << "first";
    EXPECT_EQ(contentsOf(directory.file("log")), "Error: first\n");
    Logger(0x2) << "second";
    EXPECT_EQ(contentsOf(directory.file("log")), "Error: first\nsecond\n");
}

TEST(Logger, HasADefaultLogFileInTheWorkingDirectory) {
    const LogSettings settings;
    const TemporaryDirectory directory;
    const WorkingDirectory here(directory.path());
    ORVEX_SetLogMode(1);
    Logger(0x2) << "x";
    EXPECT_EQ(contentsOf(directory.file("lib_debug.log")), "x\n");
}

TEST(Logger, IgnoresAFileThatCannotBeOpened) {
    const LogSettings settings;
    const OutputCapture out(STDOUT_FILENO);
    const TemporaryDirectory directory;
    ORVEX_SetLogMode(1);
    for (const std::string& path : {directory.file("missing/log"), directory.path().string()}) {
        ORVEX_SetLogFile(path.c_str());
        EXPECT_NO_THROW(Logger(0x2) << "lost");
    }
    EXPECT_EQ(out.text(), "");
}

TEST(Logger, IgnoresAnEmptyFileName) {
    const LogSettings settings;
    const OutputCapture out(STDOUT_FILENO);
    const TemporaryDirectory directory;
    const WorkingDirectory here(directory.path());
    ORVEX_SetLogMode(1);
    ORVEX_SetLogFile("");
    Logger(0x2) << "lost";
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
    EXPECT_EQ(out.text(), "");
}

TEST(Logger, IgnoresANullCallback) {
    const LogSettings settings;
    const OutputCapture out(STDOUT_FILENO);
    ORVEX_SetLogMode(2);
    EXPECT_NO_THROW(Logger(0x2) << "lost");
    EXPECT_EQ(out.text(), "");
}

TEST(Logger, DiscardsForAnUnknownMethod) {
    const LogCapture lines;
    const OutputCapture out(STDOUT_FILENO);
    for (const int method : {3, -1}) {
        ORVEX_SetLogMode(method);
        Logger(0x2) << "discarded";
    }
    EXPECT_THAT(lines.lines(), IsEmpty());
    EXPECT_EQ(out.text(), "");
}

TEST(Logger, ForgetsADiscardedMessage) {
    LogCapture lines;
    Logger message(0x2);
    message << "discarded";
    ORVEX_SetLogMode(3);
    message.flush();
    ORVEX_SetLogMode(2);
    message << "kept";
    message.flush();
    EXPECT_THAT(lines.lines(), ElementsAre("kept"));
}

TEST(Logger, DoesNotWaitForTheSinksLock) {
    const LogSettings settings;
    const TemporaryDirectory directory;
    ORVEX_SetLogFile(directory.file("log").c_str());
    ORVEX_SetLogMode(1);
    const std::lock_guard<std::mutex> guard(gl_lock);
    Logger(0x2) << "x";
    EXPECT_EQ(contentsOf(directory.file("log")), "x\n");
}

std::vector<std::string> received;
void receive(const char* line) {
    received.emplace_back(line);
}

TEST(Logger, HasSettersOfItsOwn) {
    LogCapture lines;
    Logger::setLogCallback(receive);
    Logger(0x2) << "mine";
    log(0x2, "the log's");
    EXPECT_THAT(received, ElementsAre("mine"));
    EXPECT_THAT(lines.lines(), ElementsAre("the log's"));

    const TemporaryDirectory directory;
    Logger::setLogMethod(1);
    Logger::setLogFile(directory.file("log"));
    Logger(0x2) << "filed";
    EXPECT_EQ(contentsOf(directory.file("log")), "filed\n");
    EXPECT_EQ(ORVEX_GetLogMode(), 2);
    EXPECT_EQ(gl_log_filename, "./lib_debug.log");
}

void fail(const char*) {
    throw std::runtime_error("the callback failed");
}

TEST(LoggerDeathTest, EndsTheProcessWhenItsEndFails) {
    const LogSettings settings;
    ORVEX_RegisterLogCallback(fail);
    ORVEX_SetLogMode(2);
    EXPECT_DEATH(Logger(0x2) << "x", "the callback failed");
}

TEST(Logger, PassesAFailureOfFlushOn) {
    LogCapture lines;
    Logger message(0x2);
    message << "x";
    ORVEX_RegisterLogCallback(fail);
    EXPECT_THROW(message.flush(), std::runtime_error);
    ORVEX_SetLogMode(3);
}

}  // namespace
