/// @file
/// The exported calls as a program finds them that knows the C header alone.
#pragma once

#include "include/qtr_orvex.h"

namespace orvex_test {

/// The exported calls, found by their names in the library loaded at run time.
struct CApi {
    decltype(&::ORVEX_GetVersion) GetVersion;
    decltype(&::ORVEX_ScanDevices) ScanDevices;
    decltype(&::ORVEX_OpenDevice) OpenDevice;
    decltype(&::ORVEX_OpenDeviceEx) OpenDeviceEx;
    decltype(&::ORVEX_GetDeviceInfo) GetDeviceInfo;
    decltype(&::ORVEX_CloseDevice) CloseDevice;
    decltype(&::ORVEX_ExecuteCommand) ExecuteCommand;
    decltype(&::ORVEX_ExecuteCommandWithValue) ExecuteCommandWithValue;
    decltype(&::ORVEX_SetOVStruct) SetOVStruct;
    decltype(&::ORVEX_GetOVStruct) GetOVStruct;
    decltype(&::ORVEX_SwitchOrvex) SwitchOrvex;
    decltype(&::ORVEX_SetLogBits) SetLogBits;
    decltype(&::ORVEX_GetLogBits) GetLogBits;
    decltype(&::ORVEX_SetLogMode) SetLogMode;
    decltype(&::ORVEX_GetLogMode) GetLogMode;
    decltype(&::ORVEX_SetLogFile) SetLogFile;
    decltype(&::ORVEX_RegisterLogCallback) RegisterLogCallback;
};

/// The library, loaded by the first call and never unloaded.
/// @throws std::runtime_error when it or one of its calls cannot be found
[[nodiscard]] const CApi& api();

/// An object of the loaded library by its symbol, null when there is none.
[[nodiscard]] void* librarySymbol(const char* name);

}  // namespace orvex_test
