#include "tests/fuzz/support/quiet_log.h"

#include <cstring>

#include "include/qtr_orvex.h"
#include "tests/fuzz/support/properties.h"

namespace orvex_fuzz {

namespace {

constexpr std::size_t kLongestLine = 8192;

void readLine(const char* line) {
    holds(std::strlen(line) < kLongestLine, "a log line has an end");
}

}  // namespace

void quietLog(bool wanted) {
    ORVEX_RegisterLogCallback(readLine);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    ORVEX_SetLogBits(wanted ? 0x7F : 0);
}

}  // namespace orvex_fuzz
