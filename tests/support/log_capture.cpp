#include "tests/support/log_capture.h"

#include <mutex>
#include <utility>

namespace orvex_test {

namespace {

// The callback has no argument of its own to find its collector with.
std::mutex collected_lock;
Lines collected;

void collect(const char* line) {
    const std::lock_guard<std::mutex> guard(collected_lock);
    collected.emplace_back(line);
}

}  // namespace

LogCapture::LogCapture(std::uint32_t bits) {
    take();
    ORVEX_SetLogBits(bits);
    ORVEX_RegisterLogCallback(collect);
    ORVEX_SetLogMode(2);
}

LogCapture::~LogCapture() {
    ORVEX_RegisterLogCallback(nullptr);
}

Lines LogCapture::lines() const {
    const std::lock_guard<std::mutex> guard(collected_lock);
    return collected;
}

Lines LogCapture::take() {
    const std::lock_guard<std::mutex> guard(collected_lock);
    return std::exchange(collected, {});
}

}  // namespace orvex_test
