// An application with functions, variables and a class named like those that the library exports.
// It is linked with the library (ORVEX_IS_LINKED) or loads it.
//
//   hijack_program LIBRARY
//
// Writes the log's lines, then "untouched" when nothing of its own was used.
#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <map>
#include <ostream>
#include <string>
#include <unordered_map>

#include "include/qtr_orvex.h"

namespace {

int calls = 0;

void called() {
    ++calls;
}

}  // namespace

void log(unsigned /*level*/, const std::string& /*message*/) {
    called();
}
void log(const std::string& /*message*/) {
    called();
}
void logerr(const std::string& /*message*/) {
    called();
}
void clog(unsigned /*level*/, const char* /*format*/, ...) {
    called();
}
void clog(const char* /*format*/, ...) {
    called();
}
void stdOut(const std::string& /*message*/) {
    called();
}
void stdErr(const std::string& /*message*/) {
    called();
}
void fileLog(const std::string& /*message*/) {
    called();
}
void callback(const std::string& /*message*/) {
    called();
}
void buildLogMessage(std::ostream& /*out*/, unsigned /*level*/) {
    called();
}
void logHeader() {
    called();
}
unsigned convertBaudrate(unsigned /*baud*/) {
    called();
    return 0;
}
void getComMapping() {
    called();
}
void updateDeviceList() {
    called();
}

/// With the library's class it shares the name and the exception it derives from.
class DriverException : public std::exception {
  public:
    DriverException();
    explicit DriverException(int const& code);
    DriverException(std::string text, int code);
    ~DriverException() override;
    const char* what() const noexcept override;
};

DriverException::DriverException() {
    called();
}
DriverException::DriverException(int const& /*code*/) {
    called();
}
DriverException::DriverException(std::string /*text*/, int /*code*/) {
    called();
}
DriverException::~DriverException() {
    called();
}
const char* DriverException::what() const noexcept {
    called();
    return "the application's own";
}

extern "C" {

int gl_log_bits = 1111;
int gl_log_method = 1111;
int gl_cb = 1111;
int gl_lock = 1111;
int gl_devs = 1111;
int gl_usb_pid_types = 1111;

}  // extern "C"

std::string gl_log_filename = "mine";
std::unordered_map<std::uint32_t, std::string> gl_type_names;
std::map<std::string, std::string> gl_cmd_lamp;
std::map<std::string, std::string> gl_cmd_lamp_ext;
std::map<std::string, std::string> gl_cmd_spruce;
std::map<std::string, std::string> gl_cmd_tamar;
std::map<std::string, std::string> gl_cmd_willow;

namespace {

bool variablesAreUntouched() {
    for (const volatile int* variable :
         {&gl_log_bits, &gl_log_method, &gl_cb, &gl_lock, &gl_devs, &gl_usb_pid_types}) {
        if (*variable != 1111) {
            return false;
        }
    }
    return gl_log_filename == "mine" && gl_type_names.empty() && gl_cmd_lamp.empty() &&
           gl_cmd_lamp_ext.empty() && gl_cmd_spruce.empty() && gl_cmd_tamar.empty() &&
           gl_cmd_willow.empty();
}

void receive(const char* text) {
    std::printf("%s\n", text);
}

struct Calls {
    decltype(&ORVEX_SetLogBits) setLogBits;
    decltype(&ORVEX_SetLogMode) setLogMode;
    decltype(&ORVEX_SetLogFile) setLogFile;
    decltype(&ORVEX_RegisterLogCallback) registerLogCallback;
    decltype(&ORVEX_ScanDevices) scanDevices;
    decltype(&ORVEX_OpenDeviceEx) openDeviceEx;
    decltype(&ORVEX_ExecuteCommand) executeCommand;
    decltype(&ORVEX_CloseDevice) closeDevice;
};

#ifdef ORVEX_IS_LINKED

Calls findCalls(const char* /*path*/) {
    return {ORVEX_SetLogBits,  ORVEX_SetLogMode,   ORVEX_SetLogFile,     ORVEX_RegisterLogCallback,
            ORVEX_ScanDevices, ORVEX_OpenDeviceEx, ORVEX_ExecuteCommand, ORVEX_CloseDevice};
}

#else

template <typename Function>
void find(void* library, Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(::dlsym(library, name));
}

Calls findCalls(const char* path) {
    void* const library = ::dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    Calls found{};
    find(library, found.setLogBits, "ORVEX_SetLogBits");
    find(library, found.setLogMode, "ORVEX_SetLogMode");
    find(library, found.setLogFile, "ORVEX_SetLogFile");
    find(library, found.registerLogCallback, "ORVEX_RegisterLogCallback");
    find(library, found.scanDevices, "ORVEX_ScanDevices");
    find(library, found.openDeviceEx, "ORVEX_OpenDeviceEx");
    find(library, found.executeCommand, "ORVEX_ExecuteCommand");
    find(library, found.closeDevice, "ORVEX_CloseDevice");
    return found;
}

#endif

/// Uses the one attached device: its tables, the registry, exceptions, and two of the log's sinks.
bool useDevice(const Calls& orvex) {
    std::uint64_t handles[4] = {};
    std::uint32_t found = 0;
    char reply[32] = "";
    orvex.setLogFile("/dev/null");
    orvex.setLogBits(LOG_BIT_ERROR | LOG_BIT_TRAFFIC);
    orvex.registerLogCallback(receive);
    orvex.setLogMode(LOG_METHOD_CALLBACK);
    if (orvex.scanDevices(handles, 4, &found) != ORVEX_OK || found != 1 ||
        orvex.openDeviceEx(handles[0]) != ORVEX_OK ||
        orvex.executeCommand(handles[0], "GetSoftwareVersion", reply, sizeof reply) != ORVEX_OK ||
        orvex.executeCommand(handles[0], "Nothing", reply, sizeof reply) !=
            ORVEX_ERR_NOT_SUPPORTED) {
        return false;
    }
    orvex.closeDevice(handles[0]);
    orvex.setLogMode(LOG_METHOD_STDOUT);
    orvex.setLogBits(LOG_BIT_ERROR | LOG_BIT_DETAIL);
    std::fflush(stdout);
    orvex.closeDevice(0);
    return orvex.openDeviceEx(0) == ORVEX_ERR_INVALID_HANDLE;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || !useDevice(findCalls(argv[1]))) {
        return 1;
    }
    std::printf("%s\n", calls == 0 && variablesAreUntouched() ? "untouched" : "used");
    return 0;
}
