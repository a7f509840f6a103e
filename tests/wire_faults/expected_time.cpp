#include "tests/wire_faults/expectation.h"

namespace orvex_test {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kLongestReply = 1024;
constexpr auto kSilence = 2100ms;
constexpr auto kReleasePause = 10ms;
constexpr auto kGroupPause = 1800ms;
constexpr auto kPollPause = 100ms;

}  // namespace

bool isWhole(const std::string& reply) {
    return reply.find('\r') != std::string::npos || reply.size() >= kLongestReply;
}

std::chrono::nanoseconds longest(const Step& step, const std::vector<Exchange>& exchanges) {
    std::chrono::nanoseconds sum = step.kind == StepKind::open ? kReleasePause : 0ms;
    const bool mayPoll = step.kind == StepKind::writeRecord || step.kind == StepKind::switchOn;
    bool polled = false;
    for (const Exchange& exchange : exchanges) {
        sum += exchange.lastSent - exchange.asked;
        sum += isWhole(exchange.reply) ? 0ms : kSilence;
        if (mayPoll && exchange.request == "us?") {
            sum += kPollPause + (polled ? 0ms : kGroupPause);
            polled = true;
        }
    }
    return sum;
}

std::chrono::nanoseconds shortest(const std::vector<Exchange>& exchanges, bool hungUp) {
    constexpr auto kTimerCoarseness = 50ms;
    const bool waited = !hungUp && !exchanges.empty() && !isWhole(exchanges.back().reply);
    return waited ? kSilence - kTimerCoarseness : 0ms;
}

}  // namespace orvex_test
