#include "tests/support/c_api.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace orvex_test {

namespace {

void* loadLibrary() {
    void* const library = ::dlopen(ORVEX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw std::runtime_error(::dlerror());
    }
    return library;
}

void* library() {
    static void* const loaded = loadLibrary();
    return loaded;
}

template <typename Function>
void find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(librarySymbol(name));
    if (function == nullptr) {
        throw std::runtime_error(std::string(name) + " is not exported");
    }
}

CApi findAll() {
    CApi calls{};
    find(calls.GetVersion, "ORVEX_GetVersion");
    find(calls.ScanDevices, "ORVEX_ScanDevices");
    find(calls.OpenDevice, "ORVEX_OpenDevice");
    find(calls.OpenDeviceEx, "ORVEX_OpenDeviceEx");
    find(calls.GetDeviceInfo, "ORVEX_GetDeviceInfo");
    find(calls.CloseDevice, "ORVEX_CloseDevice");
    find(calls.ExecuteCommand, "ORVEX_ExecuteCommand");
    find(calls.ExecuteCommandWithValue, "ORVEX_ExecuteCommandWithValue");
    find(calls.SetOVStruct, "ORVEX_SetOVStruct");
    find(calls.GetOVStruct, "ORVEX_GetOVStruct");
    find(calls.SwitchOrvex, "ORVEX_SwitchOrvex");
    find(calls.SetLogBits, "ORVEX_SetLogBits");
    find(calls.GetLogBits, "ORVEX_GetLogBits");
    find(calls.SetLogMode, "ORVEX_SetLogMode");
    find(calls.GetLogMode, "ORVEX_GetLogMode");
    find(calls.SetLogFile, "ORVEX_SetLogFile");
    find(calls.RegisterLogCallback, "ORVEX_RegisterLogCallback");
    return calls;
}

}  // namespace

const CApi& api() {
    static const CApi calls = findAll();
    return calls;
}

void* librarySymbol(const char* name) {
    return ::dlsym(library(), name);
}

}  // namespace orvex_test
