#include "tests/support/forced_calls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <map>
#include <optional>

namespace orvex_test {

namespace {

struct ForcedResult {
    long result;
    int error;
    int count;
};

// Not objects with destructors: the calls are made until the process has ended.
auto& forcedResults() {
    static auto& results = *new std::map<Call, ForcedResult>;
    return results;
}
std::optional<termios> forced_settings;
Recording* recording = nullptr;
SkippedPauses* skipped_pauses = nullptr;

/// The forced result of a call, if there is one; sets errno.
std::optional<long> forced(Call call) {
    const auto found = forcedResults().find(call);
    if (found == forcedResults().end()) {
        return std::nullopt;
    }
    ++found->second.count;
    errno = found->second.error;
    return found->second.result;
}

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

int pause(SkippedPauses& pauses, const timespec& asked, timespec* remaining) {
    using std::chrono::nanoseconds;
    using std::chrono::seconds;
    pauses.asked.emplace_back(seconds(asked.tv_sec) + nanoseconds(asked.tv_nsec));
    const nanoseconds left =
        pauses.during ? pauses.during(pauses.asked.size()) : SkippedPauses::Nanoseconds::zero();
    if (left == nanoseconds::zero()) {
        return 0;
    }
    *remaining = {left.count() / 1'000'000'000, left.count() % 1'000'000'000};
    errno = EINTR;
    return -1;
}

}  // namespace

Forced::Forced(Call call, long result, int error) : call_(call) {
    forcedResults()[call] = {result, error, 0};
}
Forced::~Forced() {
    forcedResults().erase(call_);
}
int Forced::count() const {
    return forcedResults().at(call_).count;
}

ForcedSettings::ForcedSettings(const termios& settings) {
    forced_settings = settings;
}
ForcedSettings::~ForcedSettings() {
    forced_settings.reset();
}

Recording::Recording() {
    recording = this;
}
Recording::~Recording() {
    recording = nullptr;
}

SkippedPauses::SkippedPauses() {
    skipped_pauses = this;
}
SkippedPauses::~SkippedPauses() {
    skipped_pauses = nullptr;
}

}  // namespace orvex_test

using orvex_test::Call;
using orvex_test::forced;
using orvex_test::real;

extern "C" {

int open(const char* path, int flags, ...) {
    if (orvex_test::recording != nullptr) {
        orvex_test::recording->openFlags.push_back(flags);
    }
    if (const auto result = forced(Call::Open)) {
        return static_cast<int>(*result);
    }
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    static const auto call = real<int(const char*, int, ...)>("open");
    return call(path, flags, mode);
}

int close(int descriptor) {
    static const auto call = real<int(int)>("close");
    const int closed = call(descriptor);
    const auto result = forced(Call::Close);
    return result ? static_cast<int>(*result) : closed;
}

ssize_t read(int descriptor, void* buffer, std::size_t size) {
    if (const auto result = forced(Call::Read)) {
        return *result;
    }
    static const auto call = real<ssize_t(int, void*, std::size_t)>("read");
    return call(descriptor, buffer, size);
}

ssize_t write(int descriptor, const void* buffer, std::size_t size) {
    if (const auto result = forced(Call::Write)) {
        return *result;
    }
    static const auto call = real<ssize_t(int, const void*, std::size_t)>("write");
    return call(descriptor, buffer, size);
}

int tcgetattr(int descriptor, termios* settings) noexcept {
    if (const auto result = forced(Call::GetAttributes)) {
        return static_cast<int>(*result);
    }
    if (orvex_test::forced_settings) {
        *settings = *orvex_test::forced_settings;
        return 0;
    }
    static const auto call = real<int(int, termios*)>("tcgetattr");
    return call(descriptor, settings);
}

int tcsetattr(int descriptor, int action, const termios* settings) noexcept {
    if (orvex_test::recording != nullptr) {
        orvex_test::recording->settings.emplace_back(action, *settings);
    }
    if (const auto result = forced(Call::SetAttributes)) {
        return static_cast<int>(*result);
    }
    static const auto call = real<int(int, int, const termios*)>("tcsetattr");
    return call(descriptor, action, settings);
}

int ioctl(int descriptor, unsigned long request, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, request);
    const auto argument = va_arg(arguments, unsigned long);
    va_end(arguments);
    if (orvex_test::recording != nullptr) {
        orvex_test::recording->controls.emplace_back(request, argument);
    }
    if (const auto result = forced(Call::Ioctl)) {
        return static_cast<int>(*result);
    }
    static const auto call = real<int(int, unsigned long, ...)>("ioctl");
    return call(descriptor, request, argument);
}

speed_t cfgetispeed(const termios* settings) noexcept {
    if (const auto result = forced(Call::GetInputSpeed)) {
        return static_cast<speed_t>(*result);
    }
    static const auto call = real<speed_t(const termios*)>("cfgetispeed");
    return call(settings);
}

speed_t cfgetospeed(const termios* settings) noexcept {
    if (const auto result = forced(Call::GetOutputSpeed)) {
        return static_cast<speed_t>(*result);
    }
    static const auto call = real<speed_t(const termios*)>("cfgetospeed");
    return call(settings);
}

int nanosleep(const timespec* asked, timespec* remaining) {
    if (orvex_test::skipped_pauses != nullptr) {
        return orvex_test::pause(*orvex_test::skipped_pauses, *asked, remaining);
    }
    static const auto call = real<int(const timespec*, timespec*)>("nanosleep");
    return call(asked, remaining);
}

}  // extern "C"
