// A device's replies while it is opened, read out and closed.
//
// The first line is the model's digit, then "l" for a log and letters of the port's faults
// (support/fake_port.h). Replies (support/script.h) to the opening follow, and behind one more line
// the reply to the closing.
#include "tests/fuzz/support/devices.h"
#include "tests/fuzz/support/expected_opening.h"
#include "tests/fuzz/support/properties.h"
#include "tests/fuzz/support/quiet_log.h"

using namespace orvex_fuzz;

namespace {

std::uint32_t openCount(std::uint64_t handle) {
    std::uint32_t count = 0;
    holds(ORVEX_GetDeviceInfo(handle, nullptr, nullptr, 0, &count) == ORVEX_OK,
          "a device tells its open count");
    return count;
}

/// The status of an opening whose port has faults; OK when they do not keep it from being opened.
std::uint32_t portOutcome(const FakePort::Faults& faults) {
    const bool isRefused = faults.open || (faults.isLowest && faults.duplicate) ||
                           faults.getAttributes || faults.setAttributes;
    return isRefused ? ORVEX_ERR_NO_DEVICE : ORVEX_OK;
}

void checkFailure(const UsedDevice& device, const FakePort& port) {
    holds(openCount(device.handle()) == 0, "a device that failed to open is closed");
    if (port.exchanges.size() <= 1) {
        holds(!port.isOpen(), "no port stays open when the first request fails");
    }
    soundRecordOf(device.handle());
}

void checkReopening(const UsedDevice& device, const FakePort& port) {
    const std::size_t sent = port.exchanges.size();
    holds(ORVEX_OpenDeviceEx(device.handle()) == ORVEX_OK, "an open device is opened again");
    holds(openCount(device.handle()) == 2, "opens are counted");
    ORVEX_CloseDevice(device.handle());
    holds(openCount(device.handle()) == 1, "closes are counted");
    holds(port.exchanges.size() == sent, "counting sends nothing");
}

void checkClosing(const UsedDevice& device, const FakePort& port, bool isLed) {
    const std::size_t sent = port.exchanges.size();
    ORVEX_CloseDevice(device.handle());
    holds(port.exchanges.size() == sent + 1, "closing sends one request");
    const Exchange& last = port.exchanges.back();
    const bool wasSent = last.fault != Exchange::Fault::Purge;
    holds(last.request == (!wasSent ? ""
                           : isLed  ? "dc\r"
                                    : "zz\r"),
          "closing shuts the shutter or disconnects");
    holds(!port.isOpen() && port.isRestored(), "a closed device's port is released as it was");
    holds(openCount(device.handle()) == 0, "a closed device is open no more");
    const OrvexStruct record = soundRecordOf(device.handle());
    holds(record.iSerialNumber == 0 && record.szModelName[0] == '\0', "closing clears the record");
}

void openAndClose(unsigned model, Script& script, FakePort& port) {
    const UsedDevice device(model, port);
    const std::uint32_t status = ORVEX_OpenDeviceEx(device.handle());
    requireKnownStatus(status);
    if (const std::uint32_t refused = portOutcome(port.faults()); refused != ORVEX_OK) {
        holds(status == refused && !port.isOpen(), "a port that fails is not opened");
        holds(port.exchanges.empty(), "nothing is sent to a port that fails");
        return;
    }
    const Opening expected = expectedOpening(model, device.handle(), port.exchangesFrom(0));
    holds(status == expected.status, "the status tells what failed");
    if (status != ORVEX_OK) {
        checkFailure(device, port);
        return;
    }
    holds(openCount(device.handle()) == 1, "an open device is open once");
    requireSameRecord(soundRecordOf(device.handle()), expected.record);
    checkReopening(device, port);
    static_cast<void>(script.nextStep());
    checkClosing(device, port, (expected.record.iCapabilities & ORVEX_CAP_LED) != 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Script script(data, size);
    const auto first = script.nextStep();
    if (!first || first->empty() || first->front() < '0' || first->front() > '9') {
        return 0;
    }
    quietLog(first->find('l') != std::string_view::npos);
    FakePort port(script);
    port.setFaults(first->substr(1));
    openAndClose(static_cast<unsigned>(first->front() - '0'), script, port);
    return 0;
}
