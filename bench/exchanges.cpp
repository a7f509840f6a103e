#include "bench/exchanges.h"

#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace orvex_bench {

namespace {

void receiveLine(const char* line) {
    benchmark::DoNotOptimize(line);
}

}  // namespace

OpenTamar::OpenTamar(std::size_t replyLength, bool inMemory) : Light(ORVEX_TYPE_TAMAR) {
    ORVEX_SetLogBits(0);
    ORVEX_RegisterLogCallback(receiveLine);
    ORVEX_SetLogMode(LOG_METHOD_CALLBACK);
    if (open() != ORVEX_OK) {
        throw std::runtime_error("the device cannot be opened");
    }
    line().replyWith(replyOf(replyLength));
    line().keepInMemory(inMemory);
}

void exchangeBare(int port, char* reply) {
    ::ioctl(port, TCFLSH, TCIOFLUSH);
    if (::write(port, "ip?\r", 4) != 4) {
        throw std::runtime_error("write");
    }
    while (::read(port, reply, 1) == 1 && *reply++ != '\r') {
    }
}

Contestant bare(OpenTamar& light) {
    return {"floor", [&light](int calls) {
                std::array<char, 128> reply{};
                for (int k = 0; k < calls; ++k) {
                    exchangeBare(light.line().descriptor(), reply.data());
                }
            }};
}

void exchange(std::uint64_t handle) {
    std::array<char, 128> reply;
    if (ORVEX_ExecuteCommand(handle, "GetIntensity", reply.data(), reply.size()) != ORVEX_OK) {
        throw std::runtime_error("an exchange has failed");
    }
    benchmark::DoNotOptimize(reply);
}

Contestant library(OpenTamar& light, const std::string& name, std::uint32_t bits) {
    return {name, [&light, bits](int calls) {
                ORVEX_SetLogBits(bits);
                for (int k = 0; k < calls; ++k) {
                    exchange(light.handle());
                }
                ORVEX_SetLogBits(0);
            }};
}

}  // namespace orvex_bench
