// Signals that arrive every millisecond while calls wait for a device.
#include <gmock/gmock.h>
#include <pthread.h>
#include <signal.h>

#include <array>
#include <atomic>
#include <future>
#include <thread>

#include "sim/fault.h"
#include "tests/support/registered_light.h"
#include "tests/support/thread_log.h"
#include "tests/timing/limits.h"

namespace {

using namespace orvex_test;
using orvex::sim::onAny;
using orvex::sim::silence;

std::atomic<unsigned> caught{0};

void count(int /*signal*/) {
    ++caught;
}

/// Sends SIGUSR1 to a thread every millisecond while it exists.
class SignalStorm {
  public:
    /// @param flags of the handler: SA_RESTART or 0
    SignalStorm(pthread_t target, int flags)
        : target_(target), before_(handle(flags)), thread_([this] { run(); }) {}
    SignalStorm(const SignalStorm&) = delete;
    SignalStorm& operator=(const SignalStorm&) = delete;
    ~SignalStorm() {
        stopping_ = true;
        thread_.join();
        ::signal(SIGUSR1, SIG_IGN);  // Forgets one that is blocked and waits.
        ::sigaction(SIGUSR1, &before_, nullptr);
    }

  private:
    static struct sigaction handle(int flags) {
        struct sigaction action = {};
        struct sigaction before = {};
        action.sa_handler = count;
        action.sa_flags = flags;
        EXPECT_EQ(::sigaction(SIGUSR1, &action, &before), 0);
        caught = 0;
        return before;
    }
    void run() const {
        while (!stopping_) {
            ::pthread_kill(target_, SIGUSR1);
            std::this_thread::sleep_for(1ms);
        }
    }

    const pthread_t target_;
    const struct sigaction before_;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

class Signals : public testing::Test {
  protected:
    static orvex::sim::DeviceSetup fourLeds() {
        orvex::sim::DeviceSetup setup;
        setup.wavelengths = {365, 405, 470, 525};
        return setup;
    }
    std::uint32_t command() const {
        std::array<char, 64> reply{};
        return ORVEX_ExecuteCommand(light_.handle, "GetLedHours", reply.data(), reply.size());
    }

    ThreadLog log_{LOG_BIT_ERROR};
    RegisteredLight light_{fourLeds()};
};

TEST_F(Signals, ThatRestartCallsDisturbNoExchange) {
    const SignalStorm storm(::pthread_self(), SA_RESTART);
    while (caught < 100) {
        ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
        ASSERT_EQ(command(), ORVEX_OK);
        ASSERT_EQ(ORVEX_SwitchOrvex(light_.handle, true, false), ORVEX_OK);
        ORVEX_CloseDevice(light_.handle);
    }
    EXPECT_THAT(ThreadLog::take(), testing::IsEmpty());
}

// Every signal starts the wait for a byte anew: half a second without one is needed for its end.
TEST_F(Signals, ThatRestartCallsKeepASilentDeviceWaitedFor) {
    ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    light_.device.addFault(onAny(), silence());
    const auto begin = std::chrono::steady_clock::now();
    std::promise<pthread_t> started;
    auto call = std::async(std::launch::async, [&] {
        started.set_value(::pthread_self());
        return command();
    });
    {
        const SignalStorm storm(started.get_future().get(), SA_RESTART);
        EXPECT_EQ(call.wait_for(2 * kSilenceLimit), std::future_status::timeout);
    }
    EXPECT_EQ(call.get(), ORVEX_ERR_RECV);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 2 * kSilenceLimit);
}

TEST_F(Signals, ThatDoNotRestartCallsEndTheExchange) {
    ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    light_.device.addFault(onAny().nth(1), silence());
    {
        const SignalStorm storm(::pthread_self(), 0);
        EXPECT_EQ(command(), ORVEX_ERR_RECV);
    }
    EXPECT_THAT(ThreadLog::take(),
                testing::ElementsAre(
                    "Error: SerialLink::recvArray: Error 4 from read: Interrupted system call",
                    "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                    "Exception: DriverException (0xa0515019): SerialLink::recvArray: read."));
    EXPECT_EQ(command(), ORVEX_OK);
}

TEST_F(Signals, ThatAreBlockedChangeNothing) {
    ASSERT_EQ(ORVEX_OpenDeviceEx(light_.handle), ORVEX_OK);
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
    light_.device.addFault(onAny(), silence());
    {
        const SignalStorm storm(::pthread_self(), 0);
        expectInTime(kSilenceLimit - 50ms, kSilenceLimit, [this] {
            const auto begin = std::chrono::steady_clock::now();
            const std::uint32_t status = command();
            return Measured{std::chrono::steady_clock::now() - begin,
                            status == ORVEX_ERR_RECV ? "" : "status " + std::to_string(status)};
        });
    }
    ASSERT_EQ(::pthread_sigmask(SIG_SETMASK, &before, nullptr), 0);
}

TEST(SignalsInAPause, DoNotShortenIt) {
    const ThreadLog log(LOG_BIT_ERROR);
    RegisteredLight light(ORVEX_TYPE_TAMAR);
    ASSERT_EQ(ORVEX_OpenDeviceEx(light.handle), ORVEX_OK);
    light.device.clearRecord();
    OrvexStruct record{};
    record.iSize = sizeof record;
    ASSERT_EQ(ORVEX_GetOVStruct(light.handle, &record), ORVEX_OK);
    record.aChannels[3].iState = 1;
    const auto begin = std::chrono::steady_clock::now();
    std::promise<pthread_t> started;
    auto call = std::async(std::launch::async, [&] {
        started.set_value(::pthread_self());
        return ORVEX_SetOVStruct(light.handle, &record);
    });
    const pthread_t caller = started.get_future().get();
    ASSERT_TRUE(light.device.waitForRequests(2));  // Off, on.
    std::this_thread::sleep_for(300ms);            // Into the pause of 1.8 s.
    {
        const SignalStorm storm(caller, 0);
        std::this_thread::sleep_for(700ms);
    }
    EXPECT_EQ(call.get(), ORVEX_OK);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, kGroupPause + kPollPause);
    EXPECT_GT(caught, 10U);
}

}  // namespace
