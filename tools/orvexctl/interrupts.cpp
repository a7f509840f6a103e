#include "tools/orvexctl/interrupts.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <thread>

#include "tools/orvexctl/screen.h"

namespace orvex::tools {

namespace {

using namespace std::chrono_literals;

constexpr int kSignalBase = 128;

volatile std::sig_atomic_t received = 0;

void remember(int signal) {
    if (received != 0) {
        restoreScreen();
        ::_exit(kSignalBase + signal);
    }
    received = signal;
}

}  // namespace

void catchInterrupts() {
    struct sigaction action {};
    action.sa_handler = remember;
    // An exchange with the light goes on; waiting for keys and sleeping do not.
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        ::sigaction(signal, &action, nullptr);
    }
}

int interruptSignal() noexcept {
    return received;
}

void forgetInterrupt() noexcept {
    received = 0;
}

ExitCode interruptedCode() noexcept {
    return static_cast<ExitCode>(kSignalBase + received);
}

void sleepUnlessInterrupted(std::chrono::milliseconds duration) {
    constexpr auto kSlice = 20ms;
    const auto end = std::chrono::steady_clock::now() + duration;
    for (auto now = std::chrono::steady_clock::now(); now < end && !isInterrupted();
         now = std::chrono::steady_clock::now()) {
        std::this_thread::sleep_until(std::min(end, now + kSlice));
    }
}

}  // namespace orvex::tools
