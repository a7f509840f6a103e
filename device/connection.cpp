// A device's connection: opening, counting the opens, closing.
#include "api/driver_exception.h"
#include "device/light_device.h"
#include "log/log_line.h"

using orvex::logLine;

namespace {

constexpr unsigned kMinBaudrate = 9600;
constexpr int kPingAttempts = 3;

}  // namespace

void* LightDevice::openConnection(unsigned baud) {
    if (connection_count_ != 0) {
        return reopen();
    }
    if (baud < kMinBaudrate) {
        logerr("LightDevice::openConnection: Wrong baudrate: " + std::to_string(baud));
        orvex::raise(ORVEX_ERR_INVALID_ARG);
    }
    if (!connectLink(baud)) {
        return nullptr;
    }
    log(LOG_BIT_INFO, "LightDevice::openConnection: connect() succeed.");
    if (requestConnect().empty()) {
        failSilentConnect();
    }
    if (knows("EnableExtendedCommands")) {
        query("EnableExtendedCommands");
    }
    initDevice();
    logLine(LOG_BIT_DETAIL, "openConnection: succeed.");
    connection_count_ = 1;
    return hDev();
}

void* LightDevice::reopen() {
    if (!isConnected()) {
        logerr("LightDevice::openConnection: connection_count_:" +
               std::to_string(connection_count_) + " but link was disconnected");
        orvex::raise(ORVEX_ERR_NOT_CONNECTED);
    }
    const std::uint32_t count = ++connection_count_;
    logLine(LOG_BIT_INFO,
            "LightDevice::openConnection: LightDevice openend again. connection_count_: ", count);
    return hDev();
}

bool LightDevice::connectLink(unsigned baud) {
    const Lock lock(mutex_);
    link_ = std::make_unique<SerialLink>('\0');
    const unsigned refused = link_->connect(port_, baud);
    if (refused != ORVEX_OK) {
        logLine(LOG_BIT_ERROR, "LightDevice::openConnection: connect() failed: ", refused);
        link_.reset();
        return false;
    }
    return true;
}

std::string LightDevice::requestConnect() {
    try {
        return query("Connect");
    } catch (const DriverException& e) {
        const Lock lock(mutex_);
        logLine(LOG_BIT_ERROR, "LightDevice::openConnection: ", e.what());
        const unsigned failed = link().disconnect();
        link_.reset();
        if (failed != ORVEX_OK) {
            clog(LOG_BIT_ERROR, "LightDevice::openConnection: disconnect failed: 0x%X", failed);
        }
        throw;
    }
}

void LightDevice::failSilentConnect() {
    for (int attempt = 0; attempt < kPingAttempts; ++attempt) {
        if (ping()) {
            logerr("openConnection: No respond. But Ping succeed");
            releaseLink();
            orvex::raise(ORVEX_ERR_NO_RESPONSE);
        }
    }
    releaseLink();
    logerr("openConnection: Ping failed");
    orvex::raise(ORVEX_ERR_NO_DEVICE);
}

void LightDevice::releaseLink() {
    const Lock lock(mutex_);
    link_.reset();
}

int LightDevice::closeConnection(bool leaveShutter) {
    const std::uint32_t remaining = --connection_count_;
    if (remaining != 0) {
        logLine(LOG_BIT_INFO, "Closed 1x device ", hDev(), ". Is still open ", remaining,
                " time(s).");
        return 0;
    }
    takeLeave(leaveShutter);
    const Lock lock(mutex_);
    link_.reset();
    resetDevice();
    logLine(LOG_BIT_INFO, "closeConnection: disconnected.");
    return 0;
}

/// Tells the device; the port is released whatever happens here.
void LightDevice::takeLeave(bool leaveShutter) {
    try {
        if (!leaveShutter && knows("CloseShutter")) {
            query("CloseShutter");
        }
        if (knows("Disconnect")) {
            query("Disconnect");
        }
    } catch (const DriverException& e) {
        // Programs know this text, which names CloseShutter also when Disconnect failed.
        logLine(LOG_BIT_ERROR,
                "LightDevice::closeConnection: execute CloseShutter failed. Exception: ", e.what());
    } catch (const std::bad_alloc&) {
        // The device is not told, and neither is the log.
    }
}
