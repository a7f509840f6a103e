// A serial link and a device's raw exchanges, under every result of the system's calls.
//
// The first line names faults of the port (support/fake_port.h) and, behind ":", the speed in bits
// per second; with "D" and a model's digit in it, operations on a device follow instead of those on
// a link. Each further line is an operation with a number, the replies behind it.
#include <algorithm>

#include "api/driver_exception.h"
#include "serial/baud_rates.h"
#include "serial/serial_link.h"
#include "tests/fuzz/support/devices.h"
#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"
#include "tests/fuzz/support/quiet_log.h"

using namespace orvex_fuzz;

namespace {

constexpr int kMaxSteps = 24;
constexpr std::size_t kMaxLength = 1100;

struct Operation {
    char letter;
    std::uint32_t number;
};

Operation operationIn(std::string_view line) {
    return {line.empty() ? '\0' : line.front(),
            static_cast<std::uint32_t>(decimalAt(line.substr(line.empty() ? 0 : 1)))};
}

/// Whether a rate is the largest that is not above the wanted one.
bool isRateFor(unsigned wanted, unsigned speed) {
    unsigned best = 0;
    for (const auto& [rate, constant] : orvex::kBaudRates) {
        best = rate <= wanted ? rate : best;
    }
    return orvex::kBaudRates.at(best) == speed;
}

void checkReceived(const std::vector<char>& buffer, std::size_t received, const FakePort& port) {
    holds(received <= buffer.size(), "no more is received than asked for");
    const std::string& reply = port.exchanges.back().reply;
    holds(reply.size() >= received &&
              std::equal(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(received),
                         reply.end() - static_cast<std::ptrdiff_t>(received)),
          "what is received is what was sent");
    holds(std::all_of(buffer.begin() + static_cast<std::ptrdiff_t>(received), buffer.end(),
                      [](char c) { return c == 'u'; }),
          "nothing is written behind what is received");
}

void transfer(SerialLink& link, const Operation& operation, FakePort& port) {
    std::vector<char> buffer(operation.number % kMaxLength, 'u');
    switch (operation.letter) {
        case 'a':
            if (!buffer.empty()) {
                checkReceived(buffer, link.recvArray(buffer.data(), buffer.size()), port);
            }
            break;
        case 'b':
            holds(link.recvChar() == port.exchanges.back().reply.back(), "a byte is the last read");
            break;
        case 's':
            link.sendArray(buffer.data(), buffer.size());
            holds(port.exchanges.back().request == std::string(buffer.begin(), buffer.end()),
                  "all bytes are sent");
            break;
        case 'S':
            link.sendChar(static_cast<char>(operation.number));
            break;
        default:
            link.purge();
    }
}

void configure(SerialLink& link, const Operation& operation) {
    switch (operation.letter) {
        case 't':
            link.setTimeout(operation.number);
            break;
        case 'T':
            link.resetTimeouts();
            break;
        case 'w':
            link.setBaudrate(operation.number);
            holds(isRateFor(operation.number, convertBaudrate(operation.number)),
                  "a speed is rounded down to a rate");
            break;
        default: {
            const unsigned rate = link.getBaudrate();
            holds(orvex::kBaudRates.count(rate) == 1, "a speed that is read is a rate");
        }
    }
}

void onLink(SerialLink& link, const Operation& operation, FakePort& port) {
    const bool wasOpen = port.isOpen();
    holds(link.isConnected() == wasOpen, "a link knows whether its port is open");
    if (operation.letter == 'd') {
        const unsigned status = link.disconnect();
        holds(status == (wasOpen && port.faults().close ? ORVEX_ERR_IO : ORVEX_OK),
              "disconnecting fails only where closing does");
        holds(!port.isOpen(), "a disconnected port is closed");
    } else if (operation.letter == 'c') {
        requireKnownStatus(link.connect(operation.number % 2 == 0 ? "/dev/ttyACM0" : "", 9600));
    } else if (std::string_view("tTwg").find(operation.letter) != std::string_view::npos) {
        configure(link, operation);
    } else {
        transfer(link, operation, port);
    }
}

void switchDevice(const UsedDevice& device, const Operation& operation) {
    const bool on = operation.number % 2 == 0;
    switch (operation.letter) {
        case 'L':
            device->setLampState(on);
            break;
        case 'H':
            device->setShutterState(on);
            break;
        default:
            on ? device->switchInternalOn("1") : device->switchInternalOff();
            holds(!device->getLampState(), "only switchOrvex changes what is remembered");
    }
}

void onDevice(const UsedDevice& device, const Operation& operation, FakePort& port) {
    const std::size_t length = operation.number % kMaxLength;
    std::vector<char> request(length, 'q');
    std::vector<char> answer(length, 'u');
    std::size_t received = 0;
    switch (operation.letter) {
        case 'P':
            static_cast<void>(device->ping());
            holds(port.exchanges.back().request == "A", "a ping is one byte");
            break;
        case 'W':
            holds(device->writeArray(request.data(), length) == 0, "writing an array gives 0");
            holds(port.exchanges.back().request.size() == length, "an array is sent whole");
            break;
        case 'R':
            holds(device->readArray(request.data(), length, answer.data(), length) == 0,
                  "reading an array gives 0");
            received = port.exchanges.back().reply.size() - 1;
            checkReceived(answer, received, port);
            break;
        case 'L':
        case 'H':
        case 'I':
            switchDevice(device, operation);
            break;
        case 'E':
            device->Write(request.data(), length);
            break;
        case 'D':
            if (length != 0) {
                device->Read(answer.data(), length, received);
                checkReceived(answer, received, port);
            }
            break;
        default:
            holds(device->Purge() == 0, "a purge gives 0");
    }
}

template <typename Perform>
void run(Script& script, Perform perform) {
    for (int k = 0; k < kMaxSteps; ++k) {
        const auto line = script.nextStep();
        if (!line) {
            return;
        }
        try {
            perform(operationIn(*line));
        } catch (const DriverException& e) {
            requireKnownStatus(e.error_code());
            holds(e.error_code() != ORVEX_OK, "a failure has a code");
        }
    }
}

void runDevice(unsigned model, unsigned baud, Script& script, FakePort& port) {
    const UsedDevice device(model, port);
    try {
        device->openConnection(baud);
        holds(baud >= 9600, "a device is opened at 9600 bits per second at least");
    } catch (const DriverException& e) {
        requireKnownStatus(e.error_code());
    }
    run(script, [&](const Operation& operation) { onDevice(device, operation, port); });
}

void runLink(unsigned baud, Script& script, FakePort& port) {
    SerialLink link('\0');
    requireKnownStatus(link.connect("/dev/ttyACM0", baud));
    run(script, [&](const Operation& operation) { onLink(link, operation, port); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Script script(data, size);
    const auto first = script.nextStep();
    if (!first) {
        return 0;
    }
    const std::vector<std::string> head = piecesOf(*first, ":");
    const unsigned baud = head.size() > 1 ? static_cast<unsigned>(decimalAt(head[1])) : 9600;
    quietLog(head[0].find('l') != std::string::npos);
    FakePort port(script);
    port.setFaults(head[0]);
    if (const std::size_t device = head[0].find('D'); device != std::string::npos) {
        const auto model = static_cast<unsigned>(decimalAt(head[0].substr(device + 1))) % kModels;
        runDevice(model, baud, script, port);
    } else {
        runLink(baud, script, port);
    }
    return 0;
}
