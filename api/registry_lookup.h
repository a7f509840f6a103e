/// @file
/// From a caller's handle to the device.
#pragma once

#include <cstdint>

#include "api/device_registry.h"
#include "api/driver_exception.h"
#include "log/log_line.h"

namespace orvex {

/// A caller's handle as the registry's key.
[[nodiscard]] inline void* toKey(std::uint64_t handle) noexcept {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle));
}

/// A registry's key as the caller's handle.
[[nodiscard]] inline std::uint64_t toHandle(const void* key) noexcept {
    return reinterpret_cast<std::uintptr_t>(key);
}

/// The device behind a handle, null when it is not registered.
[[nodiscard]] inline LightDevice* findDevice(std::uint64_t handle) {
    const auto found = gl_devs.find(toKey(handle));
    return found != gl_devs.end() ? found->second.get() : nullptr;
}

/// Logs a call's failure as an error and returns its status code.
[[nodiscard]] inline std::uint32_t reportFailure(const char* call, const DriverException& e) {
    logLine(LOG_BIT_ERROR, call, ": failed. Exception: ", e.what());
    return e.error_code();
}

}  // namespace orvex
