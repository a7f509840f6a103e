#include "serial/system_error.h"

#include <new>
#include <system_error>

#include "log/log.h"

namespace orvex {

void logSystemError(const char* context, const char* call, int error) {
    try {
        clog(LOG_BIT_ERROR, "%s Error %i from %s: %s", context, error, call,
             std::generic_category().message(error).c_str());
    } catch (const std::bad_alloc&) {  // Lost.
    }
}

}  // namespace orvex
