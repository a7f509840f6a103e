#include "bench/other_system_calls.h"

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

namespace orvex_bench {

namespace {

// A system call stops the traced process twice, with this signal's number.
constexpr int kSystemCallStop = SIGTRAP | 0x80;

void require(bool succeeded, const char* call) {
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

/// Not raise(), which makes more than one system call.
void stopHere(long self) {
    ::syscall(SYS_tkill, self, SIGSTOP);
}

[[noreturn]] void runTraced(const std::function<void()>& function) {
    const long self = ::syscall(SYS_gettid);
    ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    stopHere(self);
    stopHere(self);
    function();
    stopHere(self);
    ::_exit(0);
}

int awaitStop(pid_t child) {
    int status = 0;
    require(::waitpid(child, &status, 0) == child, "waitpid");
    if (!WIFSTOPPED(status)) {
        throw std::runtime_error("the traced process has ended");
    }
    return WSTOPSIG(status);
}

/// Lets the child run to its next SIGSTOP. @return its stops at system calls
std::size_t stopsUntilSignal(pid_t child) {
    std::size_t stops = 0;
    for (;;) {
        require(::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0, "ptrace");
        const int signal = awaitStop(child);
        if (signal == SIGSTOP) {
            return stops;
        }
        stops += signal == kSystemCallStop ? 1 : 0;
    }
}

}  // namespace

std::size_t otherSystemCalls(const std::function<void()>& function) {
    const pid_t child = ::fork();
    require(child >= 0, "fork");
    if (child == 0) {
        runTraced(function);
    }
    awaitStop(child);
    require(::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD) == 0, "ptrace");
    stopsUntilSignal(child);
    const std::size_t stops = stopsUntilSignal(child);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    // Both ends of a stretch lie within the call that stops the process: its end, its beginning.
    return (stops - 2) / 2;
}

}  // namespace orvex_bench
