#include "tools/orvexctl/timeout.h"

#include <sys/time.h>
#include <unistd.h>

#include <cmath>
#include <csignal>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/screen.h"

namespace orvex::tools {

namespace {

// Runs in a signal handler: system calls only.
void endNow(int /*signal*/) {
    constexpr char kText[] =
        "orvexctl: no answer within the --timeout; the light is left as it is then\n"
        "  try: see that it is switched on and plugged in; orvexctl doctor tells more\n";
    restoreScreen();
    if (::write(STDERR_FILENO, kText, sizeof kText - 1) < 0) {
        ::_exit(static_cast<int>(ExitCode::noAnswer));
    }
    ::_exit(static_cast<int>(ExitCode::noAnswer));
}

}  // namespace

void endAfter(double seconds) {
    constexpr double kMicroseconds = 1e6;
    struct sigaction action {};
    action.sa_handler = endNow;
    ::sigaction(SIGALRM, &action, nullptr);
    itimerval timer{};
    const double whole = std::floor(seconds);
    timer.it_value.tv_sec = static_cast<time_t>(whole);
    timer.it_value.tv_usec = static_cast<suseconds_t>((seconds - whole) * kMicroseconds);
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace orvex::tools
