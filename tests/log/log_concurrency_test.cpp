#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "log/log.h"
#include "log/logger.h"
#include "tests/support/log_settings.h"
#include "tests/support/temporary_directory.h"

using orvex_test::contentsOf;
using orvex_test::LogSettings;
using orvex_test::TemporaryDirectory;

namespace {

constexpr int kThreads = 4;

/// Runs @p work in several threads at once; it gets its thread's number.
void inThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class LogConcurrency : public testing::Test {
  protected:
    LogConcurrency() {
        ORVEX_SetLogFile(path_.c_str());
        ORVEX_SetLogMode(1);
    }

    /// Lines far longer than any buffer, each of one letter, must come out whole.
    void expectWholeLines(const std::function<void(const std::string&)>& write) const {
        constexpr int kRepeats = 25;
        constexpr std::size_t kLength = 20'000;
        inThreads([&](int number) {
            const std::string line(kLength, static_cast<char>('a' + number));
            for (int i = 0; i < kRepeats; ++i) {
                write(line);
            }
        });
        std::map<std::string, int> counts;
        for (const std::string& line : linesOf(contentsOf(path_))) {
            ++counts[line];
        }
        ASSERT_EQ(counts.size(), 4u);
        for (const auto& [line, count] : counts) {
            EXPECT_EQ(line.size(), kLength);
            EXPECT_EQ(count, kRepeats);
        }
    }

    const LogSettings settings_;
    const TemporaryDirectory directory_;
    const std::string path_ = directory_.file("log");
};

TEST_F(LogConcurrency, LeavesLinesOfTheLogWhole) {
    expectWholeLines([](const std::string& line) { log(0x2, line); });
}

TEST_F(LogConcurrency, LeavesLinesOfLoggersWhole) {
    expectWholeLines([](const std::string& line) { Logger(0x2) << line; });
}

void ignore(const char*) {}

/// Changes every setting at least 3000 times and until @p enough; lines go to two files, to a
/// callback and nowhere, and at last to the first file.
void changeSettings(const std::vector<std::string>& files, const std::function<bool()>& enough) {
    for (unsigned turn = 1; turn <= 3'000 || !enough(); ++turn) {
        ORVEX_SetLogFile(files[turn % 2].c_str());
        ORVEX_SetLogMode(turn % 7 == 0 ? 3 : turn % 5 == 0 ? 2 : 1);
        ORVEX_SetLogBits(turn % 2 == 0 ? 0x7F : 0x107F);
        ORVEX_RegisterLogCallback(turn % 3 == 0 ? nullptr : ignore);
    }
    ORVEX_SetLogFile(files[0].c_str());
    ORVEX_SetLogMode(1);
}

/// Two threads use one way to the log, two the other.
void logFrom(int thread, int number) {
    if (thread % 2 == 0) {
        clog(0x10u, "thread %d line %d", thread, number);
    } else {
        Logger(0x10) << "thread " << thread << " line " << number;
    }
}

/// Checks that all lines are whole and those of each thread in order. @return the threads seen
std::set<char> checkLines(const std::string& path) {
    const auto whole = testing::Matches(
        testing::MatchesRegex(R"((\[[-0-9]{10} [:0-9]{8}\] )?Warning: thread [0-3] line [0-9]+)"));
    std::map<char, int> next;
    std::set<char> threads;
    for (const std::string& line : linesOf(contentsOf(path))) {
        if (!whole(line)) {
            ADD_FAILURE() << line;
            continue;
        }
        const char thread = line[line.find("thread ") + 7];
        const int number = std::stoi(line.substr(line.find("line ") + 5));
        EXPECT_GE(number, next[thread]) << line;
        next[thread] = number + 1;
        threads.insert(thread);
    }
    return threads;
}

TEST_F(LogConcurrency, SurvivesChangesOfTheSettings) {
    const std::vector<std::string> files = {path_, directory_.file("other")};
    std::atomic<int> written{0};
    std::atomic<bool> changed{false};
    std::thread changes([&] {
        changeSettings(files, [&] { return written >= 1'000; });
        changed = true;
    });
    inThreads([&](int thread) {
        int number = 0;
        for (; !changed; ++number, ++written) {
            logFrom(thread, number);
        }
        logFrom(thread, number);
    });
    changes.join();
    EXPECT_EQ(checkLines(files[0]), (std::set<char>{'0', '1', '2', '3'}));
    checkLines(files[1]);
}

}  // namespace
