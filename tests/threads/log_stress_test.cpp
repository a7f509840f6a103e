// The log under exchanges of many threads: settings change, a callback asks the library.
#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <thread>

#include "include/qtr_orvex.h"
#include "tests/support/temporary_directory.h"
#include "tests/threads/fleet.h"

namespace {

using orvex_threads::exchangesPerThread;
using orvex_threads::Fleet;
using orvex_threads::inThreads;
using orvex_threads::kThreads;
using orvex_threads::reportRate;

std::atomic<std::uint64_t> asked_handle{0};
std::atomic<long> lines{0};
std::atomic<long> wrong_answers{0};

/// A callback that calls everything that it may.
void ask(const char* line) {
    std::array<std::uint32_t, 4> version{};
    ORVEX_GetVersion(&version[0], &version[1], &version[2], &version[3]);
    const bool isVersion = version == std::array<std::uint32_t, 4>{1, 1, 0, 1};
    std::uint32_t type = 0;
    std::uint32_t opens = 0;
    std::array<char, 128> port{};
    const std::uint32_t status =
        ORVEX_GetDeviceInfo(asked_handle, &type, port.data(), port.size(), &opens);
    const bool isDevice = status == ORVEX_OK && type == ORVEX_TYPE_TAMAR && opens == 1;
    const bool isMode = ORVEX_GetLogMode() >= 1 && ORVEX_GetLogMode() <= 3;
    const bool isMask = (ORVEX_GetLogBits() & ~0x107FU) == 0;
    wrong_answers += isVersion && isDevice && isMode && isMask && line[0] != '\0' ? 0 : 1;
    ++lines;
}

void ignore(const char* /*line*/) {
    ++lines;
}

class LogStress : public Fleet {
  protected:
    LogStress() {
        attach(kThreads);
        asked_handle = handle(0);
        lines = 0;
        wrong_answers = 0;
    }

    /// Every thread exchanges with its own device and, in turns, with one that all share.
    void exchangeAll(int count) {
        std::atomic<int> wrong{0};
        reportRate(static_cast<std::size_t>(count) * kThreads, [&] {
            inThreads([&](int thread) {
                for (int number = 1; number <= count; ++number) {
                    const std::size_t device =
                        number % 2 == 0 ? 0 : static_cast<std::size_t>(thread);
                    wrong += exchange(device, thread, number) ? 0 : 1;
                }
            });
        });
        EXPECT_EQ(wrong, 0);
    }

    /// Changes all settings until @p enough, to two files, to two callbacks, to none.
    void changeSettings(const std::atomic<bool>& enough) const {
        for (unsigned turn = 0; !enough; ++turn) {
            ORVEX_SetLogBits(turn % 5 == 0 ? 0U : turn % 2 == 0 ? 0x107FU : 0x7FU);
            ORVEX_SetLogFile(directory_.file(turn % 2 == 0 ? "one" : "two").c_str());
            ORVEX_RegisterLogCallback(turn % 7 == 0 ? nullptr : turn % 3 == 0 ? ignore : ask);
            ORVEX_SetLogMode(turn % 11 == 0 ? 3 : turn % 4 == 0 ? 1 : 2);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    }

  private:
    const orvex_test::TemporaryDirectory directory_;
};

TEST_F(LogStress, SettingsChangeMeanwhile) {
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    std::atomic<bool> done{false};
    std::thread changes([&] { changeSettings(done); });
    exchangeAll(exchangesPerThread());
    done = true;
    changes.join();
    EXPECT_GT(lines, 0);
    EXPECT_EQ(wrong_answers, 0);
}

TEST_F(LogStress, ACallbackMayAskTheLibrary) {
    ORVEX_RegisterLogCallback(ask);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    ORVEX_SetLogBits(LOG_BIT_TRAFFIC);
    const int count = exchangesPerThread();
    exchangeAll(count);
    EXPECT_EQ(lines, 2L * count * kThreads);
    EXPECT_EQ(wrong_answers, 0);
}

}  // namespace
