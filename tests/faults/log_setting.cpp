#include "tests/faults/log_setting.h"

#include <filesystem>
#include <sstream>
#include <utility>

#include "include/qtr_orvex.h"
#include "tests/faults/injector.h"
#include "tests/faults/sink_calls.h"

namespace orvex_faults {

namespace {

std::vector<std::string> received;

void receive(const char* line) {
    const OutsideLibrary test;
    received.emplace_back(line);
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace

LogSetting::LogSetting(LogTo place) : place_(place), file_(directory_.file("log.txt")) {
    ORVEX_SetLogBits(place == LogTo::Nowhere ? 0 : 0x7F);
    ORVEX_SetLogFile(file_.c_str());
    ORVEX_RegisterLogCallback(receive);
    ORVEX_SetLogMode(place == LogTo::File     ? LOG_METHOD_FILE
                     : place == LogTo::Output ? LOG_METHOD_STDOUT
                                              : LOG_METHOD_CALLBACK);
    received.clear();
    writtenOutput().clear();
}

LogSetting::~LogSetting() {
    ORVEX_SetLogBits(0);
    ORVEX_RegisterLogCallback(nullptr);
}

std::vector<std::string> LogSetting::take() {
    if (place_ == LogTo::File) {
        std::vector<std::string> lines = linesOf(orvex_test::contentsOf(file_));
        std::filesystem::remove(file_);
        return lines;
    }
    if (place_ == LogTo::Output) {
        return linesOf(std::exchange(writtenOutput(), {}));
    }
    return std::exchange(received, {});
}

const char* nameOf(LogTo place) {
    constexpr const char* kNames[] = {"Callback", "File", "Output", "Nowhere"};
    return kNames[static_cast<std::size_t>(place)];
}

}  // namespace orvex_faults
