#include "tools/orvex-sim/signals.h"

#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace orvex::tools {

namespace {

constexpr int kHeard[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGUSR1, SIGUSR2, SIGCHLD};

sigset_t heardSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kHeard) {
        sigaddset(&set, number);
    }
    return set;
}

sim::Descriptor checked(int descriptor, const char* call) {
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), call);
    }
    return sim::Descriptor(descriptor);
}

}  // namespace

Bell::Bell() : event_(checked(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")) {}

void Bell::ring() const noexcept {
    ::eventfd_write(event_.get(), 1);
}

void Bell::hear() const noexcept {
    eventfd_t count = 0;
    ::eventfd_read(event_.get(), &count);
}

Signals::Signals() {
    const sigset_t heard = heardSignals();
    sigset_t blocked = heard;
    // A reader of the trace that goes away shows as a failed write.
    sigaddset(&blocked, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before_.blocked);
    ::sigaction(SIGPIPE, nullptr, &before_.brokenPipe);
    source_ = checked(::signalfd(-1, &heard, SFD_CLOEXEC | SFD_NONBLOCK), "signalfd");
}

Signals::~Signals() {
    while (take()) {
    }
    const timespec now{};
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    ::sigtimedwait(&brokenPipe, nullptr, &now);
    ::pthread_sigmask(SIG_SETMASK, &before_.blocked, nullptr);
}

std::optional<Signal> Signals::take() const {
    signalfd_siginfo info{};
    if (::read(source_.get(), &info, sizeof info) != sizeof info) {
        return std::nullopt;
    }
    return Signal{static_cast<int>(info.ssi_signo), info.ssi_code == SI_KERNEL};
}

bool asksToEnd(int signal) noexcept {
    return signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT;
}

}  // namespace orvex::tools
