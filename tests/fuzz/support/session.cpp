#include "tests/fuzz/support/session.h"

#include <cstring>

#include "tests/fuzz/support/expected_opening.h"
#include "tests/fuzz/support/expected_reply.h"
#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"

namespace orvex_fuzz {

namespace {

constexpr unsigned kFirstLedModel = 6;
constexpr std::uint32_t kSizes = 2048;

/// A text as a caller passes it: up to its first NUL.
std::string passed(const std::vector<std::string>& parts, std::size_t k) {
    return k < parts.size() ? parts[k].substr(0, parts[k].find('\0')) : "";
}

}  // namespace

Session::Session(unsigned model, FakePort& port)
    : model_(model), port_(port), device_(model, port), handle_(device_.handle()) {}

Exchanges Session::exchangesOfCall() const {
    return port_.exchangesFrom(before_);
}

void Session::perform(std::string_view step) {
    before_ = port_.exchanges.size();
    const char letter = step.empty() ? '\0' : step.front();
    const std::string_view text = step.substr(step.empty() ? 0 : 1);
    const std::vector<std::string> parts = piecesOf(text, ":");
    Command command{static_cast<std::uint32_t>(decimalAt(text)) % kSizes, passed(parts, 1),
                    passed(parts, 2)};
    switch (letter) {
        case 'X': {
            const std::string value = command.value;
            for (int k = 1; k < 64; ++k) {
                command.value += value;
            }
            return execute(command);
        }
        case 'y':
            command.size = static_cast<std::uint32_t>(port_.comingReplySize()) + command.size % 4;
            command.size -= command.size != 0 ? 1 : 0;
            return execute(command);
        case 'x':
            return execute(command);
        case 'n':
            return callWithoutPointers();
        case 'N':
            return callWithoutDevice();
        case 'r':
            return write(text);
        case 'R':
            return writeShort(text);
        case 's':
            return switchLight(text);
        case 'o':
            return reopen();
        case 'c':
            return close();
        case 'i':
            return inform(text);
        case '!':
            return port_.setFaults(text);
        default:
            return;
    }
}

void Session::reopen() {
    const bool isAnew = count_ == 0;
    const std::uint32_t status = ORVEX_OpenDeviceEx(handle_);
    requireKnownStatus(status);
    if (!isAnew) {
        holds(status == ORVEX_OK && exchangesOfCall().empty(), "an open device is only counted");
        ++count_;
        return;
    }
    const FakePort::Faults& faults = port_.faults();
    if (faults.open || (faults.isLowest && faults.duplicate) || faults.getAttributes ||
        faults.setAttributes) {
        holds(status == ORVEX_ERR_NO_DEVICE && !port_.isOpen(), "a failing port is not opened");
        return;
    }
    const Exchanges opening = exchangesOfCall();
    holds(status == expectedOpening(model_, handle_, opening).status,
          "the status of opening tells what failed");
    count_ = status == ORVEX_OK ? 1 : 0;
    learnPositions(opening);
    soundRecordOf(handle_);
}

/// Where the LEDs are, as far as an opening came.
void Session::learnPositions(const Exchanges& opening) {
    if (model_ < kFirstLedModel) {
        last_ = opening.size() > 2 ? 1 : last_;
        return;
    }
    if (opening.size() < 2 || model_ == kFirstLedModel) {
        return;
    }
    positions_.clear();
    if (outcomeOf(opening[1]) != ORVEX_OK) {
        return;
    }
    int position = 0;
    for (const std::int32_t wavelength : decimalsIn(opening[1].reply)) {
        if (position == 16) {
            return;
        }
        if (wavelength < 1) {
            break;
        }
        ++position;
        if (wavelength != 999) {
            positions_.push_back(position);
        }
    }
    last_ = position;
}

void Session::close() {
    const bool wasOpen = port_.isOpen();
    ORVEX_CloseDevice(handle_);
    if (!wasOpen) {
        holds(exchangesOfCall().empty(), "a closed device is left alone");
        return;
    }
    if (--count_ != 0) {
        holds(port_.isOpen() && exchangesOfCall().empty(), "a close is only counted");
        return;
    }
    holds(!port_.isOpen(), "the last close releases the port");
    holds(port_.faults().setAttributes || port_.isRestored(), "the port is left as it was");
    last_ = 0;
    isSwitching_ = false;
    isSwitchedOn_ = false;
    soundRecordOf(handle_);
}

void Session::inform(std::string_view text) const {
    const std::string path = "/dev/ttyACM" + std::to_string(model_);
    const std::uint32_t size = static_cast<std::uint32_t>(decimalAt(text)) % 64;
    std::string buffer(64, 'u');
    std::uint32_t type = 99;
    std::uint32_t count = 99;
    const std::uint32_t status = ORVEX_GetDeviceInfo(handle_, &type, buffer.data(), size, &count);
    holds(type == model_, "a device tells its model");
    if (size <= path.size() + 1) {
        holds(status == ORVEX_ERR_BUFFER_TOO_SMALL && count == 99 && buffer[0] == 'u',
              "a port's path that does not fit is not written");
    } else {
        holds(status == ORVEX_OK && count == count_, "a device tells its open count");
        holds(buffer.substr(0, path.size() + 2) == path + '\0' + 'u', "a path is written whole");
    }
}

void Session::execute(const Command& command) {
    ReplyBuffer buffer(command.size);
    const std::uint32_t status = ORVEX_ExecuteCommandWithValue(
        handle_, command.name.c_str(), buffer.data(), command.size, command.value.c_str());
    requireKnownStatus(status);
    holds(status == expectedStatus(command), "the status tells how the exchange ended");
    if (status == ORVEX_OK) {
        buffer.requireReply(port_.exchanges.back().reply);
    } else {
        buffer.requireUntouched();
    }
}

/// Requires that the command was sent as it has to be, or not at all.
std::uint32_t Session::expectedStatus(const Command& command) const {
    const std::string* const prefix = requestPrefix(model_, command.name);
    const Exchanges sent = exchangesOfCall();
    const bool isTooLong = prefix != nullptr && prefix->size() + command.value.size() > 1023;
    if (prefix == nullptr || !port_.isOpen() || isTooLong) {
        holds(sent.empty(), "nothing is sent for a command that is refused");
        return prefix == nullptr ? ORVEX_ERR_NOT_SUPPORTED
               : !port_.isOpen() ? ORVEX_ERR_NOT_CONNECTED
                                 : ORVEX_ERR_INVALID_ARG;
    }
    holds(sent.size() == 1, "a command is one exchange");
    requireRequest(sent[0], *prefix + command.value);
    if (const std::uint32_t failed = outcomeOf(sent[0]); failed != ORVEX_OK) {
        return failed;
    }
    requireWholeReply(sent[0].reply);
    return command.size < sent[0].reply.size() ? ORVEX_ERR_BUFFER_TOO_SMALL : ORVEX_OK;
}

void Session::callWithoutPointers() const {
    char reply[8] = "before";
    holds(ORVEX_ExecuteCommand(handle_, nullptr, reply, 8) == ORVEX_ERR_INVALID_ARG,
          "a command needs a name");
    holds(ORVEX_ExecuteCommand(handle_, "Connect", nullptr, 8) == ORVEX_ERR_INVALID_ARG,
          "a command needs a buffer");
    std::uint64_t opened = handle_;
    holds(ORVEX_OpenDevice(nullptr, 0, nullptr, 9600) == ORVEX_ERR_INVALID_HANDLE &&
              ORVEX_OpenDevice(&opened, 0, nullptr, 9600) == ORVEX_ERR_INVALID_HANDLE,
          "opening needs a place for the handle");
    holds(opened == handle_ && std::strcmp(reply, "before") == 0 && exchangesOfCall().empty(),
          "nothing is written or sent");
}

void Session::callWithoutDevice() const {
    char reply[8] = "before";
    OrvexStruct record{};
    record.iSize = sizeof record;
    for (const std::uint64_t handle : {std::uint64_t{0}, handle_ + 1, ~std::uint64_t{0}}) {
        holds(ORVEX_ExecuteCommand(handle, "Connect", reply, 8) == ORVEX_ERR_NO_HANDLE &&
                  ORVEX_SetOVStruct(handle, &record) == ORVEX_ERR_NO_HANDLE &&
                  ORVEX_GetOVStruct(handle, &record) == ORVEX_ERR_NO_HANDLE &&
                  ORVEX_SwitchOrvex(handle, true, false) == ORVEX_ERR_NO_HANDLE &&
                  ORVEX_GetDeviceInfo(handle, nullptr, reply, 8, nullptr) == ORVEX_ERR_NO_HANDLE &&
                  ORVEX_OpenDeviceEx(handle) == ORVEX_ERR_INVALID_HANDLE,
              "a call needs a device");
        ORVEX_CloseDevice(handle);
    }
    std::uint32_t version[4] = {};
    holds(ORVEX_GetVersion(&version[0], &version[1], &version[2], &version[3]) == ORVEX_OK &&
              version[0] == 1,
          "the version is told");
    holds(std::strcmp(reply, "before") == 0 && exchangesOfCall().empty(),
          "nothing is written or sent");
}

}  // namespace orvex_fuzz
