#include "bench/line.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/uio.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <system_error>
#include <utility>

#include "bench/rounds.h"

using orvex_bench::Line;

namespace {

constexpr std::size_t kMaxDescriptor = 1024;

std::atomic<int> skippedPauses{0};

/// The lines by the number of the terminal, which all descriptors on it share.
std::array<std::atomic<Line*>, kMaxDescriptor> lines{};

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

struct RealCalls {
    ssize_t (*read)(int, void*, std::size_t) = real<ssize_t(int, void*, std::size_t)>("read");
    ssize_t (*write)(int, const void*,
                     std::size_t) = real<ssize_t(int, const void*, std::size_t)>("write");
    int (*ioctl)(int, unsigned long, ...) = real<int(int, unsigned long, ...)>("ioctl");
    ssize_t (*writev)(int, const iovec*, int) = real<ssize_t(int, const iovec*, int)>("writev");
    int (*close)(int) = real<int(int)>("close");
    int (*nanosleep)(const timespec*,
                     timespec*) = real<int(const timespec*, timespec*)>("nanosleep");
};

const RealCalls& realCalls() {
    static const RealCalls calls;
    return calls;
}

/// The lines behind descriptors: learnt at the first call on one, forgotten when it is closed.
std::array<std::atomic<Line*>, kMaxDescriptor> linesByDescriptor{};

Line* lineBehind(int descriptor) {
    if (descriptor < 0 || static_cast<std::size_t>(descriptor) >= kMaxDescriptor) {
        return nullptr;
    }
    auto& known = linesByDescriptor[static_cast<std::size_t>(descriptor)];
    if (Line* line = known.load(std::memory_order_relaxed); line != nullptr) {
        return line;
    }
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISCHR(status.st_mode)) {
        return nullptr;
    }
    const unsigned number = minor(status.st_rdev);
    constexpr unsigned kFirstSlaveMajor = 136;
    if (major(status.st_rdev) != kFirstSlaveMajor || number >= kMaxDescriptor) {
        return nullptr;
    }
    known = lines[number].load();
    return known;
}

unsigned terminalNumber(int descriptor) {
    struct stat status {};
    ::fstat(descriptor, &status);
    return minor(status.st_rdev) % kMaxDescriptor;
}

void require(bool succeeded, const char* call) {
    if (!succeeded) {
        throw std::system_error(errno, std::generic_category(), call);
    }
}

orvex::sim::Descriptor openMaster() {
    orvex::sim::Descriptor master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    require(master.get() >= 0, "posix_openpt");
    require(::grantpt(master.get()) == 0 && ::unlockpt(master.get()) == 0, "unlockpt");
    return master;
}

/// As the library sets a port.
void setRaw(int terminal) {
    termios settings{};
    ::tcgetattr(terminal, &settings);
    ::cfmakeraw(&settings);
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 5;
    ::tcsetattr(terminal, TCSANOW, &settings);
}

}  // namespace

namespace orvex_bench {

Calls& calls() noexcept {
    thread_local Calls counted;
    return counted;
}

Line::Line() : path_(directory_.path() + "/ttyACM0"), master_(openMaster()) {
    const std::string slave = ::ptsname(master_.get());
    terminal_ = orvex::sim::Descriptor(::open(slave.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    require(terminal_.get() >= 0, "open");
    setRaw(terminal_.get());
    require(::symlink(slave.c_str(), path_.c_str()) == 0, "symlink");
    lines[terminalNumber(terminal_.get())] = this;
}

Line::~Line() {
    lines[terminalNumber(terminal_.get())] = nullptr;
    for (auto& line : linesByDescriptor) {
        Line* self = this;
        line.compare_exchange_strong(self, nullptr);
    }
}

void Line::replyWith(const std::string& bytes) {
    answer_ = nullptr;
    reply_ = bytes;
}

void Line::answerWith(Answer answer) {
    answer_ = std::move(answer);
}

void Line::prepare(std::string_view request) {
    if (answer_) {
        reply_ = answer_(request);
    }
    position_ = 0;
}

bool Line::read(void* buffer, std::size_t size, long& result) noexcept {
    if (!inMemory_) {
        return false;
    }
    const std::size_t length = reply_.copy(static_cast<char*>(buffer), size, position_);
    position_ += length;
    result = static_cast<long>(length);
    return true;
}

bool Line::write(std::string_view bytes, long& result) {
    prepare(bytes);
    result = static_cast<long>(bytes.size());
    return inMemory_;
}

void Line::deliver(std::size_t written) {
    const Times start = now();
    std::array<char, 1024> taken{};
    while (written > 0) {
        const ssize_t got = realCalls().read(master_.get(), taken.data(), taken.size());
        written -= got > 0 ? static_cast<std::size_t>(got) : written;
    }
    realCalls().write(master_.get(), reply_.data(), reply_.size());
    int waiting = 0;
    while (realCalls().ioctl(terminal_.get(), FIONREAD, &waiting) == 0 &&
           static_cast<std::size_t>(waiting) < reply_.size()) {
        ::sched_yield();
    }
    const Times end = now();
    excluded().cpu += end.cpu - start.cpu;
    excluded().wall += end.wall - start.wall;
}

SkippedPauses::SkippedPauses() {
    ++skippedPauses;
}
SkippedPauses::~SkippedPauses() {
    --skippedPauses;
}

}  // namespace orvex_bench

extern "C" {

ssize_t read(int descriptor, void* buffer, std::size_t size) {
    if (Line* line = lineBehind(descriptor); line != nullptr) {
        ++orvex_bench::calls().read;
        if (long result = 0; line->read(buffer, size, result)) {
            return result;
        }
    }
    return realCalls().read(descriptor, buffer, size);
}

ssize_t write(int descriptor, const void* buffer, std::size_t size) {
    Line* line = lineBehind(descriptor);
    if (line == nullptr) {
        return realCalls().write(descriptor, buffer, size);
    }
    ++orvex_bench::calls().write;
    if (long result = 0; line->write({static_cast<const char*>(buffer), size}, result)) {
        return result;
    }
    const ssize_t written = realCalls().write(descriptor, buffer, size);
    if (written > 0) {
        line->deliver(static_cast<std::size_t>(written));
    }
    return written;
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (const Line* line = lineBehind(descriptor); line != nullptr) {
        if (request == TIOCMGET) {  // A pseudo-terminal has no modem lines; some libraries ask.
            *static_cast<int*>(argument) = 0;
            return 0;
        }
        if (request == TIOCMBIS || request == TIOCMBIC || request == TIOCMSET) {
            return 0;
        }
        ++orvex_bench::calls().ioctl;
        if (line->isInMemory()) {
            return 0;
        }
    }
    return realCalls().ioctl(descriptor, request, argument);
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
    if (lineBehind(descriptor) == nullptr) {
        return realCalls().writev(descriptor, pieces, count);
    }
    std::string bytes;
    for (int k = 0; k < count; ++k) {
        bytes.append(static_cast<const char*>(pieces[k].iov_base), pieces[k].iov_len);
    }
    return write(descriptor, bytes.data(), bytes.size());
}

int close(int descriptor) {
    if (descriptor >= 0 && static_cast<std::size_t>(descriptor) < kMaxDescriptor) {
        linesByDescriptor[static_cast<std::size_t>(descriptor)] = nullptr;
    }
    return realCalls().close(descriptor);
}

int nanosleep(const timespec* asked, timespec* remaining) {
    ++orvex_bench::calls().pauses;
    orvex_bench::calls().pausedFor +=
        static_cast<double>(asked->tv_sec) * 1e3 + static_cast<double>(asked->tv_nsec) * 1e-6;
    return skippedPauses > 0 ? 0 : realCalls().nanosleep(asked, remaining);
}

}  // extern "C"
