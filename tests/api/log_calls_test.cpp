// The calls that configure the log, as a program sees them.
#include <gmock/gmock.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/attached_devices.h"
#include "tests/support/output_capture.h"
#include "tests/support/temporary_directory.h"

namespace {

using orvex_test::api;
using orvex_test::contentsOf;
using orvex_test::OutputCapture;
using orvex_test::TemporaryDirectory;
using orvex_test::WorkingDirectory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::ResultOf;

constexpr const char* kErrorLine = "Error: ORVEX_OpenDeviceEx: handle was nullptr";
constexpr const char* kNoMatchLine =
    "Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 at <>, num scanned: 0";

constexpr const char* kStamp = "[0000-00-00 00:00:00] ";

/// A line with each digit of its time stamp made a "0".
std::string withoutDigits(std::string line) {
    for (std::size_t k = 0; k < line.size() && line[k] != ']'; ++k) {
        line[k] = std::isdigit(static_cast<unsigned char>(line[k])) != 0 ? '0' : line[k];
    }
    return line;
}

/// Logs one error.
void logError() {
    EXPECT_EQ(api().OpenDeviceEx(0), 0xA0515002u);
}

/// Logs a detail, a warning and a progress line.
void logThreeLines() {
    api().CloseDevice(0x1234);
}

std::vector<std::string> other_lines;

void receiveElsewhere(const char* line) {
    other_lines.emplace_back(line);
}

class LogCalls : public orvex_test::AttachedDevices {
  protected:
    LogCalls() { orvex_test::resetLog(); }

    /// Logs one error in the way that does not divert it to standard error.
    static void logNoMatch() {
        std::uint64_t handle = 0;
        EXPECT_EQ(api().OpenDevice(&handle, 65535, nullptr, 9600), 0x80515001u);
    }
};

TEST(LogSettingsAtFirst, AreAllClassesToStandardOutput) {
    EXPECT_EQ(api().GetLogBits(), 0x7Fu);
    EXPECT_EQ(api().GetLogMode(), 0);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    logThreeLines();
    logError();
    EXPECT_EQ(out.text(),
              "ORVEX_CloseDevice: 0x1234\n"
              "Warning: ORVEX_CloseDevice: Handle not found: 0x1234\n"
              "--------------------------------------------------------------\n");
    EXPECT_EQ(err.text(), "Error: ORVEX_OpenDeviceEx: handle was nullptr\n");
}

TEST(LogSettingsAtFirst, NameAFileInTheWorkingDirectory) {
    const TemporaryDirectory directory;
    const WorkingDirectory inside(directory.path());
    api().SetLogMode(1);
    logError();
    orvex_test::resetLog();
    EXPECT_EQ(contentsOf("lib_debug.log"), std::string(kErrorLine) + "\n");
}

TEST_F(LogCalls, TellTheMaskThatWasSet) {
    for (const std::uint32_t bits : {0u, 1u, 0x1001u, 0x80000000u, 0xFFFFFFFFu, 0x7Fu}) {
        api().SetLogBits(bits);
        EXPECT_EQ(api().GetLogBits(), bits);
    }
}

TEST_F(LogCalls, TellTheMethodThatWasSet) {
    for (const int method : {1, 2, 7, -1, 2147483647, 0}) {
        api().SetLogMode(method);
        EXPECT_EQ(api().GetLogMode(), method);
    }
}

TEST_F(LogCalls, SilenceEverySinkWithAnEmptyMask) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    other_lines.clear();
    api().SetLogBits(0);
    api().SetLogFile(file.c_str());
    api().RegisterLogCallback(receiveElsewhere);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    for (const int method : {0, 1, 2}) {
        api().SetLogMode(method);
        logError();
        logThreeLines();
        logNoMatch();
    }
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(err.text(), "");
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_THAT(other_lines, IsEmpty());
}

TEST_F(LogCalls, DiscardLinesUnderAnUnknownMethod) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    other_lines.clear();
    api().SetLogFile(file.c_str());
    api().RegisterLogCallback(receiveElsewhere);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    for (const int method : {7, 3, -1}) {
        api().SetLogMode(method);
        logError();
        logThreeLines();
        logNoMatch();
    }
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(err.text(), "");
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_THAT(other_lines, IsEmpty());
}

TEST_F(LogCalls, SetWithoutWritingALine) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    other_lines.clear();
    api().SetLogBits(0xFFFFFFFF);
    api().SetLogFile(file.c_str());
    api().RegisterLogCallback(receiveElsewhere);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    for (const int method : {1, 2, 0}) {
        api().SetLogMode(method);
        api().SetLogBits(0xFFFFFFFF);
        EXPECT_EQ(api().GetLogBits(), 0xFFFFFFFFu);
        EXPECT_EQ(api().GetLogMode(), method);
    }
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(err.text(), "");
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_THAT(other_lines, IsEmpty());
}

TEST_F(LogCalls, AppendToTheFile) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    api().SetLogFile(file.c_str());
    api().SetLogMode(1);
    api().SetLogBits(0x1);
    logError();
    EXPECT_EQ(contentsOf(file), std::string(kErrorLine) + "\n");
    logNoMatch();
    EXPECT_EQ(contentsOf(file), std::string(kErrorLine) + "\n" + kNoMatchLine + "\n");
}

TEST_F(LogCalls, LeaveAnExistingFileUntilALineIsWritten) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("log");
    api().SetLogFile(file.c_str());
    api().SetLogMode(1);
    logError();
    api().SetLogFile(file.c_str());
    EXPECT_EQ(contentsOf(file), std::string(kErrorLine) + "\n");
    logError();
    EXPECT_EQ(contentsOf(file), std::string(kErrorLine) + "\n" + kErrorLine + "\n");
}

TEST_F(LogCalls, CopyTheFilesName) {
    const TemporaryDirectory directory;
    std::string file = directory.file("log");
    api().SetLogFile(file.c_str());
    file.back() = 'X';
    api().SetLogMode(1);
    api().SetLogBits(0x1);
    logError();
    logNoMatch();
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(contentsOf(directory.file("log")),
              std::string(kErrorLine) + "\n" + kNoMatchLine + "\n");
}

TEST_F(LogCalls, LoseLinesForAMissingDirectory) {
    const TemporaryDirectory directory;
    const std::string file = directory.file("missing/log");
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    api().SetLogFile(file.c_str());
    api().SetLogMode(1);
    logError();
    logNoMatch();
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(err.text(), "");
    EXPECT_FALSE(std::filesystem::exists(directory.file("missing")));
}

TEST_F(LogCalls, LoseLinesForAnEmptyFileName) {
    const TemporaryDirectory directory;
    const WorkingDirectory inside(directory.path());
    api().SetLogFile("");
    api().SetLogMode(1);
    logError();
    logNoMatch();
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(LogCalls, PassEachLineToTheCallbackOnce) {
    other_lines.clear();
    api().RegisterLogCallback(receiveElsewhere);
    logError();
    EXPECT_THAT(other_lines, IsEmpty());
    api().SetLogMode(2);
    api().SetLogBits(0x31);
    logError();
    logThreeLines();
    logNoMatch();
    EXPECT_THAT(other_lines,
                ElementsAre(kErrorLine, "ORVEX_CloseDevice: 0x1234",
                            "Warning: ORVEX_CloseDevice: Handle not found: 0x1234", kNoMatchLine));
}

TEST_F(LogCalls, DropLinesWithoutACallback) {
    other_lines.clear();
    api().RegisterLogCallback(receiveElsewhere);
    api().SetLogMode(2);
    api().RegisterLogCallback(nullptr);
    const OutputCapture out(STDOUT_FILENO);
    const OutputCapture err(STDERR_FILENO);
    logError();
    logNoMatch();
    EXPECT_THAT(other_lines, IsEmpty());
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(err.text(), "");
}

TEST_F(LogCalls, BeginEveryLineWithTheTimeWhenAsked) {
    other_lines.clear();
    api().RegisterLogCallback(receiveElsewhere);
    api().SetLogMode(2);
    api().SetLogBits(0x1001);
    logError();
    logNoMatch();
    logThreeLines();
    EXPECT_THAT(other_lines,
                ElementsAre(ResultOf(withoutDigits, std::string(kStamp) + kErrorLine),
                            ResultOf(withoutDigits, std::string(kStamp) + kNoMatchLine)));
}

}  // namespace
