#include "tests/fuzz/support/expected_opening.h"

#include <cstring>
#include <string>

#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"

namespace orvex_fuzz {

namespace {

constexpr const char* kNames[] = {"Alder", "Birch", "Cedar",  "Hazel", "Larch",
                                  "Maple", "Rowan", "Spruce", "Tamar", "Willow"};
constexpr unsigned kRowan = 6;
constexpr unsigned kSpruce = 7;
constexpr unsigned kTamar = 8;

/// The requests of a model's opening, in order.
std::vector<std::string> requestsOf(unsigned model) {
    switch (model) {
        case 0:
            return {"tt\r", "uu\r", "ii\r"};
        case kRowan:  // It lacks the next one.
            return {"tt\r", "jj\r"};
        case kSpruce:  // It lacks the next one.
            return {"co\r", "lw?\r", "us?\r"};
        case kTamar:
        case kTamar + 1:
            return {"co\r", "lw?\r", "us?\r", "ni?\r", "ip?\r", "gt?\r", "ln?\r", "sn?\r"};
        default:
            return {"tt\r", "jj\r", "uu\r", "ni\r", "dd\r", "gt\r"};
    }
}

/// The record of all positions, and which of them hold an LED.
struct ReadOut {
    OrvexStruct all{};
    std::vector<std::size_t> fitted;
    bool hasTooMany = false;

    [[nodiscard]] std::size_t count() const { return static_cast<std::size_t>(all.iNumChannels); }
};

void readWavelengths(ReadOut& readOut, const std::string& reply) {
    const std::vector<std::int32_t> wavelengths = decimalsIn(reply);
    std::size_t count = 0;
    while (count < wavelengths.size() && count < 16 && wavelengths[count] >= 1) {
        readOut.all.aChannels[count].iWavelength = wavelengths[count];
        if (wavelengths[count] != 999) {
            readOut.fitted.push_back(count);
        }
        ++count;
    }
    readOut.hasTooMany = count == 16 && wavelengths.size() > 16;
    readOut.all.iNumChannels = static_cast<std::int32_t>(count);
    // The fourth to the seventh LED make a group, where there are five at least.
    for (std::size_t k = 3; readOut.fitted.size() >= 5 && k < 7; ++k) {
        if (k < readOut.fitted.size()) {
            readOut.all.aChannels[readOut.fitted[k]].iGroup = 1;
        }
    }
    if (count >= 8) {
        readOut.all.iExtendedChannels = 1;
        readOut.all.iCapabilities |= 0x20;
    }
}

void readNumbers(ReadOut& readOut, const std::string& reply, std::int32_t OrvexChannel::*field) {
    const std::vector<std::int32_t> numbers = decimalsIn(reply);
    for (std::size_t k = 0; k < numbers.size() && k < readOut.count(); ++k) {
        readOut.all.aChannels[k].*field = numbers[k];
    }
}

void readStates(ReadOut& readOut, const std::string& reply) {
    readNumbers(readOut, reply, &OrvexChannel::iState);
    const std::vector<std::int32_t> states = decimalsIn(reply);
    for (std::size_t k = 0; k < states.size() && k < readOut.count(); ++k) {
        readOut.all.iUnitStatus = states[k];
    }
}

void readMinima(ReadOut& readOut, const std::string& reply) {
    const std::vector<std::int32_t> minima = decimalsIn(reply);
    for (std::size_t k = 0; k < minima.size() && k < readOut.count(); ++k) {
        readOut.all.aChannels[k].iMinIntensity = minima[k];
        readOut.all.aChannels[k].iMaxIntensity = 1000;
        readOut.all.aChannels[k].iIntensityStep = 10;
    }
}

void readNames(ReadOut& readOut, const std::string& reply) {
    const std::vector<std::string> names = piecesOf(reply, ",\r");
    for (std::size_t k = 0; k < names.size() && k < readOut.count(); ++k) {
        const std::string name = names[k].substr(0, 9);
        std::memcpy(readOut.all.aChannels[k].szLedName, name.data(), name.size());
    }
}

void readReply(ReadOut& readOut, const Exchange& exchange) {
    const std::string& reply = exchange.reply;
    if (exchange.request == "lw?\r") {
        readWavelengths(readOut, reply);
    } else if (exchange.request == "us?\r") {
        readStates(readOut, reply);
    } else if (exchange.request == "ni?\r") {
        readMinima(readOut, reply);
    } else if (exchange.request == "ip?\r") {
        readNumbers(readOut, reply, &OrvexChannel::iIntensity);
    } else if (exchange.request == "gt?\r") {
        readNumbers(readOut, reply, &OrvexChannel::iTemperature);
    } else if (exchange.request == "ln?\r") {
        readNames(readOut, reply);
    } else if (exchange.request == "sn?\r") {
        const std::size_t dash = reply.find_last_of('-');
        readOut.all.iSerialNumber = decimalAt(std::string_view(reply).substr(dash + 1));
    }
}

/// A lamp's record shows its unit status and none of its one channel.
void readLampReply(ReadOut& readOut, const Exchange& exchange) {
    if (exchange.request == "uu\r") {
        readOut.all.iUnitStatus = decimalAt(exchange.reply);
    }
}

OrvexStruct shown(const ReadOut& readOut) {
    OrvexStruct record = readOut.all;
    std::memset(record.aChannels, 0, sizeof record.aChannels);
    for (std::size_t k = 0; k < readOut.fitted.size(); ++k) {
        record.aChannels[k] = readOut.all.aChannels[readOut.fitted[k]];
    }
    record.iNumChannels = static_cast<std::int32_t>(readOut.fitted.size());
    return record;
}

}  // namespace

std::uint32_t outcomeOf(const Exchange& exchange) {
    switch (exchange.fault) {
        case Exchange::Fault::Purge:
            return ORVEX_ERR_IO;
        case Exchange::Fault::Write:
            return ORVEX_ERR_SEND;
        case Exchange::Fault::Read:
        case Exchange::Fault::Silence:
            return ORVEX_ERR_RECV;
        case Exchange::Fault::None:
            break;
    }
    return exchange.reply == "e\r" ? ORVEX_ERR_IO : ORVEX_OK;
}

Opening expectedOpening(unsigned model, std::uint64_t handle, const Exchanges& exchanges) {
    const bool isLed = model >= kRowan;
    ReadOut readOut;
    readOut.all.iSize = 2008;
    readOut.all.hDevice = handle;
    std::strcpy(readOut.all.szModelName, kNames[model]);
    readOut.all.iCapabilities = isLed ? 0x10 : (model == 0 ? 0x01 : 0x03);

    std::size_t done = 0;
    for (const std::string& request : requestsOf(model)) {
        holds(done < exchanges.size(), "opening sends each request of the read-out");
        const Exchange& exchange = exchanges[done++];
        const bool wasSent = exchange.fault != Exchange::Fault::Purge;
        holds(exchange.request == (wasSent ? request : ""), "opening sends its requests in order");
        if (const std::uint32_t failed = outcomeOf(exchange); failed != ORVEX_OK) {
            holds(done == exchanges.size(), "a failing exchange ends the opening");
            return {failed, readOut.all};
        }
        isLed ? readReply(readOut, exchange) : readLampReply(readOut, exchange);
        if (readOut.hasTooMany) {
            holds(done == exchanges.size(), "too many channels end the opening");
            return {ORVEX_ERR_MAX_CHANNEL, readOut.all};
        }
    }
    holds(done == exchanges.size(), "opening sends nothing else");
    const bool lacksRequests = model == kRowan || model == kSpruce;
    return {lacksRequests ? ORVEX_ERR_NOT_SUPPORTED : ORVEX_OK, shown(readOut)};
}

}  // namespace orvex_fuzz
