// ORVEX_ScanDevices.
#include <algorithm>
#include <unordered_set>
#include <vector>

#include "api/registry_lookup.h"
#include "device/handle_text.h"
#include "discovery/device_list.h"
#include "include/qtr_orvex.h"

namespace {

using Handles = std::unordered_set<void*>;

/// Keeps the handles of devices that are still there, taking them out of @p unlisted, and clears
/// the slots of all others.
void keepOrClear(std::uint64_t* slots, std::uint32_t count, Handles& unlisted) {
    for (std::uint64_t* slot = slots; slot != slots + count; ++slot) {
        if (*slot == 0) {
            continue;
        }
        void* const key = orvex::toKey(*slot);
        if (orvex::findDevice(*slot) != nullptr) {
            clog(LOG_BIT_INFO, "ORVEX_ScanDevices: LightDevice <%X> already in h_list.",
                 orvex::lowHandleBits(key));
            unlisted.erase(key);
        } else {
            clog(LOG_BIT_INFO,
                 "ORVEX_ScanDevices: LightDevice <%X> not found in gl_devs. Delete from h_list.",
                 orvex::lowHandleBits(key));
            *slot = 0;
        }
    }
}

void fillFreeSlots(std::uint64_t* slots, std::uint32_t count, const std::vector<void*>& found,
                   const Handles& unlisted) {
    std::uint64_t* const end = slots + count;
    std::uint64_t* slot = slots;
    for (void* key : found) {
        if (unlisted.count(key) == 0) {
            continue;
        }
        slot = std::find(slot, end, std::uint64_t{0});
        if (slot == end) {
            return;
        }
        *slot = orvex::toHandle(key);
    }
}

}  // namespace

uint32_t ORVEX_ScanDevices(uint64_t* handles, uint32_t buf_len, uint32_t* size_out) {
    if (handles == nullptr) {
        logerr("ORVEX_ScanDevices: handle list is nullptr");
        return ORVEX_ERR_INVALID_HANDLE;
    }
    if (buf_len == 0) {
        logerr("ORVEX_ScanDevices: buf_len for handels is 0.");
        return ORVEX_ERR_INVALID_ARG;
    }
    if (size_out == nullptr) {
        logerr("ORVEX_ScanDevices: size_out is nullptr.");
        return ORVEX_ERR_INVALID_ARG;
    }
    std::vector<void*> found;
    try {
        found = updateDeviceList();
    } catch (const DriverException& e) {
        return orvex::reportFailure("ORVEX_ScanDevices", e);
    }
    *size_out = static_cast<uint32_t>(found.size());
    if (buf_len < found.size()) {
        return ORVEX_ERR_BUFFER_TOO_SMALL;
    }
    Handles unlisted(found.begin(), found.end());
    keepOrClear(handles, buf_len, unlisted);
    fillFreeSlots(handles, buf_len, found, unlisted);
    return ORVEX_OK;
}
