// A device's exchanges: requests and replies on its serial link.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <string_view>
#include <thread>

#include "api/driver_exception.h"
#include "device/light_device.h"
#include "log/log.h"

using namespace std::chrono_literals;

namespace {

constexpr char kTerminator = '\r';
constexpr std::size_t kMaxRequest = 1023;
constexpr std::size_t kMaxArray = 1024;
constexpr auto kPingPause = 50ms;

using ReplyBuffer = std::array<char, 1024>;
using ArrayBuffer = std::array<char, kMaxArray + 1>;

/// A request as it goes on the wire, and the part of it that log lines show.
struct Request {
    std::string frame;
    std::string shown;
};

Request frameRequest(const std::string& request) {
    const std::size_t end = request.find(kTerminator);
    if (end == std::string::npos) {
        return {request + kTerminator, request};
    }
    return {request, request.substr(0, end)};
}

bool isErrorReply(std::string_view reply) {
    return reply == "e\r";
}

/// Reads up to the terminator, byte by byte, so that nothing behind it is consumed.
std::string_view readReply(SerialLink& link, ReplyBuffer& buffer) {
    std::size_t length = 0;
    while (length < buffer.size()) {
        buffer[length] = link.recvChar();
        if (buffer[length++] == kTerminator) {
            break;
        }
    }
    return {buffer.data(), length};
}

void logReply(std::string_view reply) {
    std::string shown(reply);
    if (shown.back() == kTerminator) {
        shown.back() = '*';
    }
    log(LOG_BIT_TRAFFIC, " <-Received [" + shown + "]");
}

void requireArrayLength(std::size_t length) {
    if (length == 0 || length > kMaxArray) {
        orvex::raise(ORVEX_ERR_INVALID_ARG);
    }
}

}  // namespace

void LightDevice::executeCommand(const std::string& name, std::string& reply,
                                 const std::string& value) {
    const auto command = commands_.find(name);
    if (command == commands_.end()) {
        orvex::raise("Command <" + name + "> is not supported for type " + std::to_string(type_),
                     ORVEX_ERR_NOT_SUPPORTED);
    }
    // The line names executeString; programs know it so.
    log(LOG_BIT_INFO, "LightDevice::executeString: " + name);
    executeString(command->second + value, reply);
}

void LightDevice::executeString(const std::string& request, std::string& reply) {
    if (!isConnected()) {
        logerr("LightDevice::executeString: LightDevice is not connected.");
        orvex::raise(ORVEX_ERR_NOT_CONNECTED);
    }
    if (request.size() > kMaxRequest) {
        orvex::raise(ORVEX_ERR_INVALID_ARG);
    }
    const Request framed = frameRequest(request);

    const Lock lock(mutex_);
    SerialLink& port = link();
    log(LOG_BIT_TRAFFIC, "Send [" + framed.shown + "*] ->");
    port.purge();
    port.sendArray(framed.frame.data(), framed.frame.size());
    ReplyBuffer buffer{};
    const std::string_view received = readReply(port, buffer);
    if (isErrorReply(received)) {
        orvex::raise("LightDevice::executeString: Command \"" + framed.shown +
                         "\" answered with error \"e\\r\"",
                     ORVEX_ERR_IO);
    }
    reply = received;
    logReply(received);
}

bool LightDevice::ping() {
    const Lock lock(mutex_);
    SerialLink& port = link();
    port.purge();
    port.sendChar('A');
    std::this_thread::sleep_for(kPingPause);
    char answer = 0;
    if (port.recvArray(&answer, 1) == 0) {
        logerr("Failed get Ping array.");
        return false;
    }
    clog(LOG_BIT_DETAIL, "Ping 'A' -> '%c'", answer);
    log(LOG_BIT_INFO, "Ping succeed.");
    return true;
}

int LightDevice::writeArray(void* data, std::size_t length) {
    requireArrayLength(length);
    const Lock lock(mutex_);
    SerialLink& port = link();
    ArrayBuffer buffer{};
    std::memcpy(buffer.data(), data, length);
    log(LOG_BIT_INFO,
        std::string("LightDevice::writeArray: Send write command: [") + buffer.data() + "]");
    port.purge();
    port.sendArray(buffer.data(), length);
    return 0;
}

int LightDevice::readArray(void* request, std::size_t requestLength, void* answer,
                           std::size_t answerLength) {
    requireArrayLength(requestLength);
    requireArrayLength(answerLength);
    const Lock lock(mutex_);
    SerialLink& port = link();
    ArrayBuffer buffer{};
    std::memcpy(buffer.data(), request, requestLength);
    log(LOG_BIT_INFO, std::string("Info: Send [") + buffer.data() + "]");
    port.purge();
    port.sendArray(buffer.data(), requestLength);
    const auto acknowledgement = static_cast<signed char>(port.recvChar());
    log(LOG_BIT_INFO, " <-Received [" + std::to_string(acknowledgement) + "]");
    const std::size_t received = port.recvArray(buffer.data(), answerLength);
    std::memcpy(answer, buffer.data(), received);
    return 0;
}

void LightDevice::Write(const void* data, std::size_t length) {
    link().sendArray(data, length);
}

std::size_t LightDevice::Read(void* data, std::size_t length, std::size_t& received) {
    received = link().recvArray(data, length);
    return received;
}

int LightDevice::Purge() {
    const Lock lock(mutex_);
    link().purge();
    return 0;
}

SerialLink& LightDevice::link() const {
    if (link_ == nullptr) {
        orvex::raise(ORVEX_ERR_NOT_CONNECTED);
    }
    return *link_;
}

std::string LightDevice::query(const char* name) {
    std::string reply;
    executeCommand(name, reply, "");
    return reply;
}
