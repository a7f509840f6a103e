// Exported calls that open, describe and close devices.
#include <algorithm>
#include <cstring>
#include <string>

#include "api/registry_lookup.h"
#include "discovery/device_list.h"
#include "include/qtr_orvex.h"

using orvex::logLine;

namespace {

constexpr unsigned kDefaultBaudrate = 9600;
constexpr const char* kSeparator = "--------------------------------------------------------------";

void writeIfWanted(uint32_t* target, uint32_t value) {
    if (target != nullptr) {
        *target = value;
    }
}

/// The first registered device that fits; an open one only when the request names port or model.
LightDevice* selectDevice(OrvexType type, const std::string& port) {
    const bool anyType = type == ORVEX_TYPE_UNDEFINED;
    for (const auto& [handle, device] : gl_devs) {
        if (!port.empty() && device->getComPort() != port) {
            continue;
        }
        if (!anyType && device->getType() != type) {
            continue;
        }
        if (device->getOpenCount() != 0 && port.empty() && anyType) {
            continue;
        }
        return device.get();
    }
    return nullptr;
}

uint32_t openSelected(uint64_t* handle, OrvexType type, const std::string& port,
                      uint32_t baudrate) {
    updateDeviceList();
    LightDevice* device = selectDevice(type, port);
    if (device == nullptr) {
        // Programs know this line with the call's name twice.
        Logger(LOG_BIT_ERROR) << "ORVEX_OpenDevice"
                              << ": "
                              << "ORVEX_OpenDevice: no match with type " << type << " at <" << port
                              << ">, num scanned: " << gl_devs.size();
        return ORVEX_ERR_NO_DEVICE;
    }
    void* const opened = device->openConnection(baudrate);
    *handle = orvex::toHandle(opened);
    if (opened == nullptr) {
        return ORVEX_ERR_NO_DEVICE;
    }
    // A pointer's own notation has the "0x" once more; programs know the line so.
    logLine(LOG_BIT_DETAIL, "ORVEX_OpenDevice: 0x", opened);
    return ORVEX_OK;
}

void logOpened(const LightDevice& device, uint64_t handle) {
    try {
        logLine(LOG_BIT_DETAIL, "openDeviceEx: Orvex [Type: ", device.getType(), "] @ \"",
                device.getComPort(), "\" assigned to hDev: ", orvex::toKey(handle));
    } catch (const std::bad_alloc&) {  // The path's copy: the line is lost, the device is open.
    }
}

}  // namespace

uint32_t ORVEX_GetVersion(uint32_t* major, uint32_t* minor, uint32_t* release, uint32_t* build) {
    writeIfWanted(major, QTR_ORVEX_MAJOR);
    writeIfWanted(minor, QTR_ORVEX_MINOR);
    writeIfWanted(release, QTR_ORVEX_RELEASE);
    writeIfWanted(build, QTR_ORVEX_BUILD_NUMBER);
    return ORVEX_OK;
}

uint32_t ORVEX_OpenDevice(uint64_t* handle, uint32_t type, const char* port, uint32_t baudrate) {
    if (handle == nullptr) {
        logerr("ORVEX_OpenDevice: handle was nullptr");
        return ORVEX_ERR_INVALID_HANDLE;
    }
    if (*handle != 0) {
        // The address of the caller's variable with a doubled "0x": programs know the line so.
        logLine(LOG_BIT_ERROR,
                "ORVEX_OpenDevice: handle adress was not nullptr. Explicit open with openDeviceEx "
                "(reopen not supported): 0x",
                static_cast<const void*>(handle));
        return ORVEX_ERR_INVALID_HANDLE;
    }
    try {
        return openSelected(handle, type, port != nullptr ? port : "", baudrate);
    } catch (const DriverException& e) {
        return orvex::reportFailure("ORVEX_OpenDevice", e);
    }
}

uint32_t ORVEX_OpenDeviceEx(uint64_t handle) {
    if (handle == 0) {
        logerr("ORVEX_OpenDeviceEx: handle was nullptr");
        return ORVEX_ERR_INVALID_HANDLE;
    }
    LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        logerr("ORVEX_OpenDeviceEx: handle for device is not found.");
        return ORVEX_ERR_INVALID_HANDLE;
    }
    try {
        if (orvex::toHandle(device->openConnection(kDefaultBaudrate)) != handle) {
            logerr("ORVEX_OpenDeviceEx: handle does not match found device.");
            return ORVEX_ERR_NO_DEVICE;
        }
    } catch (const DriverException& e) {
        return orvex::reportFailure("ORVEX_OpenDeviceEx", e);
    }
    logOpened(*device, handle);
    return ORVEX_OK;
}

uint32_t ORVEX_GetDeviceInfo(uint64_t handle, uint32_t* type, char* port, uint32_t port_len,
                             uint32_t* open_count) {
    const LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        return ORVEX_ERR_NO_HANDLE;
    }
    writeIfWanted(type, device->getType());
    if (port != nullptr) {
        // One byte more than text and terminator need: callers rely on the limit.
        const std::string path = device->getComPort();
        if (port_len <= path.size() + 1) {
            return ORVEX_ERR_BUFFER_TOO_SMALL;
        }
        std::memcpy(port, path.c_str(), path.size() + 1);
    }
    writeIfWanted(open_count, device->getOpenCount());
    return ORVEX_OK;
}

void ORVEX_CloseDevice(uint64_t handle) {
    const void* const key = orvex::toKey(handle);
    logLine(LOG_BIT_DETAIL, "ORVEX_CloseDevice: ", key);
    LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        logLine(LOG_BIT_WARNING, "ORVEX_CloseDevice: Handle not found: ", key);
    } else if (device->isConnected()) {
        device->closeConnection(false);
    }
    logLine(LOG_BIT_INFO, kSeparator);
}
