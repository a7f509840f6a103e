#include "tests/support/api_log.h"

#include <mutex>
#include <sstream>
#include <utility>

#include "tests/support/c_api.h"

namespace orvex_test {

namespace {

std::mutex collected_lock;
std::vector<std::string> collected;

void collect(const char* line) {
    const std::lock_guard<std::mutex> guard(collected_lock);
    collected.emplace_back(line);
}

}  // namespace

ApiLog::ApiLog(std::uint32_t bits) {
    restart(bits);
    api().RegisterLogCallback(collect);
    api().SetLogMode(LOG_METHOD_CALLBACK);
}

ApiLog::~ApiLog() {
    resetLog();
}

std::vector<std::string> ApiLog::take() {
    const std::lock_guard<std::mutex> guard(collected_lock);
    return std::exchange(collected, {});
}

void ApiLog::restart(std::uint32_t bits) {
    api().SetLogBits(bits);
    const std::lock_guard<std::mutex> guard(collected_lock);
    collected.clear();
}

void resetLog() {
    api().SetLogBits(0x7F);
    api().SetLogMode(LOG_METHOD_STDOUT);
    api().SetLogFile("./lib_debug.log");
    api().RegisterLogCallback(nullptr);
}

std::string handleText(std::uint64_t handle) {
    std::ostringstream text;
    text << "0x" << std::hex << handle;
    return text.str();
}

std::string lowBitsText(std::uint64_t handle) {
    std::ostringstream text;
    text << std::hex << std::uppercase << (handle & 0xFFFFFFFFu);
    return text.str();
}

}  // namespace orvex_test
