// The log's settings and the exported calls that change them.
#include "log/log.h"
#include "log/sinks.h"

// The file names are built before, and destroyed after, everything else in the library: devices
// that are destroyed when the library is unloaded still log.
#define ORVEX_OUTLIVES_THE_REST __attribute__((init_priority(101)))

namespace {

std::atomic<int> methodStorage{LOG_METHOD_STDOUT};
ORVEX_OUTLIVES_THE_REST std::string filenameStorage = "./lib_debug.log";
OrvexLogCallback callbackStorage = nullptr;
std::mutex lockStorage;

}  // namespace

std::atomic<std::uint32_t> orvex::logMask{LOG_BIT_ERROR | LOG_BIT_INFO | LOG_BIT_RESERVED |
                                          LOG_BIT_SERIAL | LOG_BIT_WARNING | LOG_BIT_DETAIL |
                                          LOG_BIT_TRAFFIC};
std::atomic<std::uint32_t>& gl_log_bits = orvex::logMask;
std::atomic<int>& gl_log_method = methodStorage;
std::string& gl_log_filename = filenameStorage;
OrvexLogCallback& gl_cb = callbackStorage;
std::mutex& gl_lock = lockStorage;

std::mutex Logger::mutex_;
std::atomic<int> Logger::log_method_{LOG_METHOD_STDOUT};
std::atomic<OrvexLogCallback> Logger::log_callback_{nullptr};
ORVEX_OUTLIVES_THE_REST std::string Logger::log_filename_ = "./lib_debug.log";
std::mutex Logger::filename_mutex_;

void ORVEX_SetLogBits(uint32_t bits) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    gl_log_bits = bits;
}

uint32_t ORVEX_GetLogBits(void) {
    return gl_log_bits;
}

void ORVEX_SetLogMode(int method) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    gl_log_method = method;
    Logger::setLogMethod(method);
}

int ORVEX_GetLogMode(void) {
    return gl_log_method;
}

void ORVEX_SetLogFile(const char* path) {
    std::string name = path;
    const std::lock_guard<std::mutex> guard(gl_lock);
    Logger::setLogFile(name);  // Without memory for it neither name has changed.
    gl_log_filename.swap(name);
}

void ORVEX_RegisterLogCallback(OrvexLogCallback receiver) {
    const std::lock_guard<std::mutex> guard(gl_lock);
    gl_cb = receiver;
    Logger::setLogCallback(receiver);
}
