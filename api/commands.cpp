// Exported calls that send commands and exchange state records.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "api/registry_lookup.h"
#include "include/qtr_orvex.h"

namespace {

constexpr std::size_t kRecordSize = sizeof(OrvexStruct);

/// Copies a reply into the caller's buffer, which holds at least the reply's length: with exactly
/// that many bytes the last character makes way for the terminator; callers rely on it.
void copyReply(std::string_view text, char* reply, uint32_t reply_len) {
    std::memset(reply, 0, reply_len);
    const std::size_t room = reply_len - 1U;
    const std::size_t length = std::min(room, text.size());
    std::memcpy(reply, text.data(), length);
    reply[length] = '\0';
}

}  // namespace

uint32_t ORVEX_ExecuteCommand(uint64_t handle, const char* command, char* reply,
                              uint32_t reply_len) {
    return ORVEX_ExecuteCommandWithValue(handle, command, reply, reply_len, nullptr);
}

uint32_t ORVEX_ExecuteCommandWithValue(uint64_t handle, const char* command, char* reply,
                                       uint32_t reply_len, const char* value) {
    LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        return ORVEX_ERR_NO_HANDLE;
    }
    if (command == nullptr || reply == nullptr) {
        return ORVEX_ERR_INVALID_ARG;
    }
    LightDevice::ReplyBuffer buffer;
    std::string_view text;
    try {
        text = device->command(command, value != nullptr ? value : "", buffer);
    } catch (const DriverException& e) {
        // Programs know this line; it names ORVEX_ExecuteCommand for both calls.
        Logger(LOG_BIT_ERROR) << "ORVEX_ExecuteCommandWithValue"
                              << ": "
                              << "ORVEX_ExecuteCommand: failed. Exception: " << e.what();
        return e.error_code();
    }
    if (reply_len < text.size()) {
        return ORVEX_ERR_BUFFER_TOO_SMALL;
    }
    copyReply(text, reply, reply_len);
    return ORVEX_OK;
}

uint32_t ORVEX_SetOVStruct(uint64_t handle, const OrvexStruct* record) {
    LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        return ORVEX_ERR_NO_HANDLE;
    }
    if (record->iSize < kRecordSize) {
        return ORVEX_ERR_STRUCT_SIZE;
    }
    const OrvexStruct own = *record;
    try {
        device->setOVStruct(own);
    } catch (const DriverException& e) {
        return orvex::reportFailure("ORVEX_SetOVStruct", e);
    }
    return ORVEX_OK;
}

uint32_t ORVEX_GetOVStruct(uint64_t handle, OrvexStruct* record) {
    const LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        return ORVEX_ERR_NO_HANDLE;
    }
    if (record->iSize < kRecordSize) {
        return ORVEX_ERR_STRUCT_SIZE;
    }
    OrvexStruct own{};
    device->getOVStruct(own);
    *record = own;
    return ORVEX_OK;
}

uint32_t ORVEX_SwitchOrvex(uint64_t handle, bool enable, bool on) {
    LightDevice* device = orvex::findDevice(handle);
    if (device == nullptr) {
        return ORVEX_ERR_NO_HANDLE;
    }
    try {
        device->switchOrvex(enable, on);
    } catch (const DriverException& e) {
        return orvex::reportFailure("ORVEX_SwitchOrvex", e);
    }
    return ORVEX_OK;
}
