// A program without a terminal that uses one device. It reads orders from its standard input, a
// line each, and answers with a line each.
//
//   daemon_program KIND PORT
//
// KIND says what it does about the terminal that its port will be to it:
//   leader     nothing: it leads a session of its own
//   ignoring   ignores SIGHUP
//   handling   counts SIGHUP
//   follower   does not lead its session
//   terminal   has another terminal already
//   closed     nothing, but has closed descriptors 0 to 2
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "api/device_registry.h"
#include "include/qtr_orvex.h"

namespace {

volatile sig_atomic_t hang_ups = 0;

void countHangUp(int /*signal*/) {
    hang_ups = hang_ups + 1;
}

/// Becomes a process that does not lead its session; the leader stays and waits for it.
void follow() {
    const pid_t child = ::fork();
    if (child != 0) {
        int status = 0;
        ::waitpid(child, &status, 0);
        ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    }
}

void takeTerminal() {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0 ||
        ::open(::ptsname(master), O_RDWR) < 0) {
        ::_exit(3);
    }
}

void handle(void (*action)(int)) {
    struct sigaction handling = {};
    handling.sa_handler = action;
    handling.sa_flags = SA_RESTART;
    ::sigaction(SIGHUP, &handling, nullptr);
}

void prepare(const std::string& kind) {
    ::setsid();
    if (kind == "ignoring") {
        handle(SIG_IGN);
    } else if (kind == "handling") {
        handle(countHangUp);
    } else if (kind == "follower") {
        follow();
    } else if (kind == "terminal") {
        takeTerminal();
    }
}

const char* terminal() {
    const int fd = ::open("/dev/tty", O_RDWR | O_NOCTTY);
    if (fd >= 0) {
        ::close(fd);
    }
    return fd >= 0 ? "a terminal" : "no terminal";
}

std::string perform(const std::string& order, std::uint64_t handle) {
    std::array<char, 64> reply{};
    std::array<char, 16> status{};
    std::uint32_t code = ORVEX_OK;
    if (order == "open") {
        code = ORVEX_OpenDeviceEx(handle);
    } else if (order == "command") {
        code = ORVEX_ExecuteCommand(handle, "GetUnitSerialNumber", reply.data(), reply.size());
    } else if (order == "close") {
        ORVEX_CloseDevice(handle);
    } else if (order == "print") {
        static_cast<void>(!::write(STDOUT_FILENO, "printed\r", 8));
        static_cast<void>(!::write(STDERR_FILENO, "printed\r", 8));
    } else if (order == "terminal") {
        return terminal();
    } else if (order == "hang-ups") {
        return std::to_string(hang_ups);
    }
    std::snprintf(status.data(), status.size(), "%X", code);
    return status.data();
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        return 2;
    }
    const std::string kind = arguments[1];
    prepare(kind);
    std::FILE* const orders = ::fdopen(::fcntl(STDIN_FILENO, F_DUPFD, 10), "r");
    const int answers = ::fcntl(STDOUT_FILENO, F_DUPFD, 10);
    if (kind == "closed") {
        for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            ::close(fd);
        }
    }
    ORVEX_SetLogBits(0);
    auto device = std::make_unique<LightDevice>(ORVEX_TYPE_TAMAR, arguments[2]);
    const auto handle = reinterpret_cast<std::uintptr_t>(device->hDev());
    gl_devs.emplace(device->hDev(), std::move(device));
    std::array<char, 64> line{};
    while (std::fgets(line.data(), line.size(), orders) != nullptr) {
        std::string order = line.data();
        order.pop_back();
        ::dprintf(answers, "%s\n", perform(order, handle).c_str());
    }
    return 0;
}
