// A device's exchanges: requests and replies on its serial link.
#include <array>
#include <chrono>
#include <cstring>
#include <string_view>
#include <thread>

#include "api/driver_exception.h"
#include "device/light_device.h"
#include "log/log_line.h"

using namespace std::chrono_literals;

namespace {

constexpr char kTerminator = '\r';
constexpr std::size_t kMaxRequest = 1023;
constexpr std::size_t kMaxArray = 1024;
constexpr auto kPingPause = 50ms;

using ArrayBuffer = std::array<char, kMaxArray + 1>;

using FrameBuffer = char[kMaxRequest + 1];

/// A request in a buffer.
struct Request {
    std::string_view frame;  ///< As it goes on the wire.
    std::string_view shown;  ///< The part that log lines show.
};

Request frameRequest(std::string_view prefix, std::string_view value, FrameBuffer& buffer) {
    std::size_t length = prefix.copy(buffer, kMaxRequest);
    length += value.copy(buffer + length, kMaxRequest - length);
    const std::string_view text(buffer, length);
    const std::size_t end = text.find(kTerminator);
    if (end != std::string_view::npos) {
        return {text, text.substr(0, end)};
    }
    buffer[length] = kTerminator;
    return {{buffer, length + 1}, text};
}

bool isErrorReply(std::string_view reply) {
    return reply == "e\r";
}

void logReply(std::string_view reply) {
    const bool isWhole = reply.back() == kTerminator;
    if (isWhole) {
        reply.remove_suffix(1);
    }
    orvex::logLine(LOG_BIT_TRAFFIC, " <-Received [", reply, isWhole ? "*]" : "]");
}

void requireArrayLength(std::size_t length) {
    if (length == 0 || length > kMaxArray) {
        orvex::raise(ORVEX_ERR_INVALID_ARG);
    }
}

}  // namespace

void LightDevice::executeCommand(const std::string& name, std::string& reply,
                                 const std::string& value) {
    ReplyBuffer buffer;
    reply = command(name, value, buffer);
}

void LightDevice::executeString(const std::string& request, std::string& reply) {
    ReplyBuffer buffer;
    reply = exchange(request, {}, buffer);
}

std::string_view LightDevice::command(const std::string& name, std::string_view value,
                                      ReplyBuffer& reply) {
    const auto command = commands_.find(name);
    if (command == commands_.end()) {
        orvex::raise("Command <" + name + "> is not supported for type " + std::to_string(type_),
                     ORVEX_ERR_NOT_SUPPORTED);
    }
    // The line names executeString; programs know it so.
    orvex::logLine(LOG_BIT_INFO, "LightDevice::executeString: ", name);
    return exchange(command->second, value, reply);
}

std::string_view LightDevice::exchange(std::string_view prefix, std::string_view value,
                                       ReplyBuffer& reply) {
    if (!isConnected()) {
        logerr("LightDevice::executeString: LightDevice is not connected.");
        orvex::raise(ORVEX_ERR_NOT_CONNECTED);
    }
    if (prefix.size() + value.size() > kMaxRequest) {
        orvex::raise(ORVEX_ERR_INVALID_ARG);
    }
    FrameBuffer buffer;
    const Request request = frameRequest(prefix, value, buffer);

    const Lock lock(mutex_);
    SerialLink& port = link();
    orvex::logLine(LOG_BIT_TRAFFIC, "Send [", request.shown, "*] ->");
    const std::string_view received(reply,
                                    port.exchange(request.frame, reply, sizeof reply, kTerminator));
    if (isErrorReply(received)) {
        orvex::raise("LightDevice::executeString: Command \"" + std::string(request.shown) +
                         "\" answered with error \"e\\r\"",
                     ORVEX_ERR_IO);
    }
    logReply(received);
    return received;
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
