// The exported calls that configure the log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <fstream>
#include <functional>
#include <future>
#include <mutex>

#include "log/log.h"
#include "log/logger.h"
#include "tests/support/log_capture.h"
#include "tests/support/output_capture.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/waiting.h"

using orvex_test::contentsOf;
using orvex_test::LogCapture;
using orvex_test::LogSettings;
using orvex_test::OutputCapture;
using orvex_test::TemporaryDirectory;
using orvex_test::WorkingDirectory;
using testing::ElementsAre;
using testing::IsEmpty;
using std::chrono_literals::operator""ms;

namespace {

/// One message on each of the two ways to the log.
void logBothWays(unsigned level = 0x2) {
    log(level, "log");
    Logger(level) << "logger";
}

std::vector<std::string> first;
std::vector<std::string> second;
void receiveFirst(const char* line) {
    first.emplace_back(line);
}
void receiveSecond(const char* line) {
    second.emplace_back(line);
}

class LogConfiguration : public testing::Test {
  protected:
    LogConfiguration() {
        first.clear();
        second.clear();
    }

    const LogSettings settings_;
    const TemporaryDirectory directory_;
};

TEST_F(LogConfiguration, HasItsDefaults) {
    EXPECT_EQ(ORVEX_GetLogBits(), 0x7Fu);
    EXPECT_EQ(ORVEX_GetLogMode(), 0);
    EXPECT_EQ(gl_log_bits, 0x7Fu);
    EXPECT_EQ(gl_log_method, 0);
    EXPECT_EQ(gl_log_filename, "./lib_debug.log");
    EXPECT_EQ(gl_cb, nullptr);
}

TEST_F(LogConfiguration, KeepsTheBits) {
    ORVEX_SetLogBits(0x1001);
    EXPECT_EQ(ORVEX_GetLogBits(), 0x1001u);
    EXPECT_EQ(gl_log_bits, 0x1001u);
    ORVEX_SetLogBits(0xFFFFFFFF);
    EXPECT_EQ(ORVEX_GetLogBits(), 0xFFFFFFFFu);
    ORVEX_SetLogBits(0);
    EXPECT_EQ(ORVEX_GetLogBits(), 0u);
}

TEST_F(LogConfiguration, WithoutBitsSilencesEverySink) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    ORVEX_SetLogFile(directory_.file("log").c_str());
    ORVEX_RegisterLogCallback(receiveFirst);
    ORVEX_SetLogBits(0);
    for (const int method : {0, 1, 2}) {
        ORVEX_SetLogMode(method);
        logBothWays(0x7F);
    }
    EXPECT_EQ(out.text() + err.text(), "");
    EXPECT_FALSE(std::filesystem::exists(directory_.file("log")));
    EXPECT_THAT(first, IsEmpty());
}

TEST_F(LogConfiguration, KeepsAnyMethod) {
    for (const int method : {7, -1, 2, 1, 0}) {
        ORVEX_SetLogMode(method);
        EXPECT_EQ(ORVEX_GetLogMode(), method);
        EXPECT_EQ(gl_log_method, method);
    }
}

TEST_F(LogConfiguration, OfTheMethodReachesBothWays) {
    const OutputCapture out(STDOUT_FILENO);
    ORVEX_SetLogFile(directory_.file("log").c_str());
    ORVEX_RegisterLogCallback(receiveFirst);
    ORVEX_SetLogMode(1);
    logBothWays();
    EXPECT_EQ(contentsOf(directory_.file("log")), "log\nlogger\n");
    ORVEX_SetLogMode(2);
    logBothWays();
    EXPECT_THAT(first, ElementsAre("log", "logger"));
    EXPECT_EQ(out.text(), "");
    ORVEX_SetLogMode(0);
    logBothWays();
    EXPECT_EQ(out.text(), "log\nlogger\n");
    ORVEX_SetLogMode(7);
    logBothWays();
    EXPECT_EQ(out.text(), "log\nlogger\n");
    EXPECT_EQ(contentsOf(directory_.file("log")), "log\nlogger\n");
    EXPECT_THAT(first, ElementsAre("log", "logger"));
}

TEST_F(LogConfiguration, OfTheFileReachesBothWays) {
    ORVEX_SetLogMode(1);
    ORVEX_SetLogFile(directory_.file("first").c_str());
    EXPECT_EQ(gl_log_filename, directory_.file("first"));
    logBothWays();
    ORVEX_SetLogFile(directory_.file("second").c_str());
    logBothWays();
    EXPECT_EQ(contentsOf(directory_.file("first")), "log\nlogger\n");
    EXPECT_EQ(contentsOf(directory_.file("second")), "log\nlogger\n");
}

TEST_F(LogConfiguration, CopiesTheFileName) {
    ORVEX_SetLogMode(1);
    std::array<char, 200> name{};
    std::strncpy(name.data(), directory_.file("log").c_str(), name.size() - 1);
    ORVEX_SetLogFile(name.data());
    name.fill('x');
    logBothWays();
    EXPECT_EQ(contentsOf(directory_.file("log")), "log\nlogger\n");
}

TEST_F(LogConfiguration, DoesNotTouchTheFile) {
    const std::string old = directory_.file("old");
    std::ofstream(old) << "kept\n";
    ORVEX_SetLogMode(1);
    ORVEX_SetLogFile(directory_.file("new").c_str());
    ORVEX_SetLogFile(old.c_str());
    EXPECT_FALSE(std::filesystem::exists(directory_.file("new")));
    EXPECT_EQ(contentsOf(old), "kept\n");
    logBothWays();
    EXPECT_EQ(contentsOf(old), "kept\nlog\nlogger\n");
}

TEST_F(LogConfiguration, AcceptsAFileInAMissingDirectory) {
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    ORVEX_SetLogMode(1);
    EXPECT_NO_THROW(ORVEX_SetLogFile(directory_.file("missing/log").c_str()));
    EXPECT_NO_THROW(logBothWays(0x1));
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
    EXPECT_EQ(out.text() + err.text(), "");
}

TEST_F(LogConfiguration, AcceptsAnEmptyFileName) {
    const WorkingDirectory here(directory_.path());
    ORVEX_SetLogMode(1);
    ORVEX_SetLogFile("");
    EXPECT_NO_THROW(logBothWays());
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
}

TEST_F(LogConfiguration, OfTheCallbackReachesBothWaysOnceALine) {
    ORVEX_SetLogMode(2);
    ORVEX_RegisterLogCallback(receiveFirst);
    EXPECT_EQ(gl_cb, &receiveFirst);
    logBothWays();
    ORVEX_RegisterLogCallback(receiveSecond);
    logBothWays(0x1);
    EXPECT_THAT(first, ElementsAre("log", "logger"));
    EXPECT_THAT(second, ElementsAre("Error: log", "Error: logger"));
}

TEST_F(LogConfiguration, AcceptsANullCallback) {
    const OutputCapture out(STDOUT_FILENO);
    ORVEX_SetLogMode(2);
    ORVEX_RegisterLogCallback(receiveFirst);
    ORVEX_RegisterLogCallback(nullptr);
    EXPECT_NO_THROW(logBothWays());
    EXPECT_THAT(first, IsEmpty());
    EXPECT_EQ(out.text(), "");
}

TEST_F(LogConfiguration, LogsNothingOfItsOwn) {
    const OutputCapture out(STDOUT_FILENO);
    ORVEX_RegisterLogCallback(receiveFirst);
    for (const int method : {1, 2, 0}) {
        ORVEX_SetLogFile(directory_.file("log").c_str());
        ORVEX_SetLogMode(method);
        ORVEX_SetLogBits(0x107F);
    }
    EXPECT_THAT(first, IsEmpty());
    EXPECT_EQ(out.text(), "");
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
}

/// Begins a call while the log is locked and checks that it waits for the lock.
void expectWaitsForTheLock(const std::function<void()>& call) {
    std::future<void> done;
    {
        const std::lock_guard<std::mutex> guard(gl_lock);
        done = std::async(std::launch::async, call);
        EXPECT_EQ(done.wait_for(50ms), std::future_status::timeout);
    }
    done.get();
}

TEST_F(LogConfiguration, ChangesUnderTheLock) {
    expectWaitsForTheLock([] { ORVEX_SetLogBits(0x1); });
    expectWaitsForTheLock([] { ORVEX_SetLogMode(7); });
    expectWaitsForTheLock([] { ORVEX_SetLogFile("other.log"); });
    expectWaitsForTheLock([] { ORVEX_RegisterLogCallback(receiveFirst); });
    EXPECT_EQ(ORVEX_GetLogBits(), 0x1u);
    EXPECT_EQ(ORVEX_GetLogMode(), 7);
    EXPECT_EQ(gl_log_filename, "other.log");
    EXPECT_EQ(gl_cb, &receiveFirst);
}

TEST_F(LogConfiguration, IsReadWithoutTheLock) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    EXPECT_EQ(ORVEX_GetLogBits(), 0x7Fu);
    EXPECT_EQ(ORVEX_GetLogMode(), 0);
}

}  // namespace
