#include "tests/faults/expected_lines.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace orvex_faults {

namespace {

constexpr std::uint32_t kOk = 0;
constexpr std::uint32_t kRecv = 0xA0515019;
constexpr std::uint32_t kSend = 0xA051501A;
constexpr std::uint32_t kIo = 0x80515003;
constexpr std::uint32_t kNoDevice = 0x80515001;

const char* errorText(int error) {
    switch (error) {
        case EIO:
            return "Error 5 from %: Input/output error";
        case EINTR:
            return "Error 4 from %: Interrupted system call";
        case EAGAIN:
            return "Error 11 from %: Resource temporarily unavailable";
        case ENXIO:
            return "Error 6 from %: No such device or address";
        case ENOENT:
            return "Error 2 from %: No such file or directory";
        case EACCES:
            return "Error 13 from %: Permission denied";
        case EBUSY:
            return "Error 16 from %: Device or resource busy";
        case ENODEV:
            return "Error 19 from %: No such device";
        case EMFILE:
            return "Error 24 from %: Too many open files";
        case ENOTTY:
            return "Error 25 from %: Inappropriate ioctl for device";
        default:
            return "?";
    }
}

/// "Error: <context> Error <number> from <call>: <text>".
std::string systemError(const std::string& context, const char* call, int error) {
    std::string text = errorText(error);
    text.replace(text.find('%'), 1, call);
    return "Error: " + context + " " + text;
}

/// Which part of the library gives a port back: a device that goes and an opening whose first
/// exchange has failed say farewell to the link, everything else just drops it.
std::string releasing(const Event& event) {
    const bool isDeviceGoing = event.step == Step::Unplug || event.step == Step::Scan;
    const bool wasConfigured = !event.history.settingsUnread && !event.history.settingsRefused;
    const bool firstExchangeFailed =
        event.step == Step::Open && wasConfigured && event.history.requests <= 1;
    return isDeviceGoing || firstExchangeFailed ? "SerialLink::disconnect:"
                                                : "SerialLink::~SerialLink:";
}

/// Whether a descriptor is closed that has only been duplicated: nobody minds.
bool isDuplicated(const Event& event) {
    return event.call == Call::Close && event.history.isDuplicated;
}

bool isConfiguring(const Event& event) {
    return !event.history.settingsUnread && event.history.settingsWritten == 0;
}

/// What an exchange throws, without the prefix that tells the code.
std::string exceptionOf(const Event& event) {
    switch (event.call) {
        case Call::Discard:
            return "DriverException (0x80515003): SerialLink::purge: read.";
        case Call::Read:
            return "DriverException (0xa0515019): SerialLink::recvArray: read.";
        default:
            break;
    }
    if (event.fault.effect == Effect::WritesShort) {
        return "DriverException (0xa051501a): SerialLink::sendArray: Wrong sent length: " +
               std::to_string(event.length - 1);
    }
    return "DriverException (0xa051501a): SerialLink::sendArray: write.";
}

/// What the application's call logs of it.
std::string callersLine(const Event& event) {
    switch (event.step) {
        case Step::Open:
            return "Error: ORVEX_OpenDevice: failed. Exception: ";
        case Step::SetRecord:
            return "Error: ORVEX_SetOVStruct: failed. Exception: ";
        case Step::SwitchOn:
        case Step::SwitchOff:
            return "Error: ORVEX_SwitchOrvex: failed. Exception: ";
        case Step::Command:
            return "Error: ORVEX_ExecuteCommandWithValue: ORVEX_ExecuteCommand: failed. "
                   "Exception: ";
        case Step::Close:
            return "Error: LightDevice::closeConnection: execute CloseShutter failed. Exception: ";
        default:
            return "no exchange here: ";
    }
}

bool isFirstExchange(const Event& event) {
    const int requests = event.call == Call::Read ? 1 : 0;
    return event.step == Step::Open && event.history.requests == requests;
}

Lines exchangeLines(const Event& event) {
    Lines lines = {*lineOf(event)};
    if (event.fault.effect == Effect::ReadsNothing) {
        return lines;  // The next attempt succeeds.
    }
    if (isFirstExchange(event)) {
        lines.push_back("Error: LightDevice::openConnection: " + exceptionOf(event));
    }
    lines.push_back(callersLine(event) + exceptionOf(event));
    return lines;
}

/// Whether a scan in which this udev function alone fails still finds the device.
bool isFoundWithout(const std::string& function) {
    static const Lines kNeeded = {"new",           "enumerate_new", "scan",          "first",
                                  "next ttyS",     "name ttyACM",   "device ttyACM", "node ttyACM",
                                  "parent ttyACM", "idVendor",      "idProduct"};
    return std::find(kNeeded.begin(), kNeeded.end(), function) == kNeeded.end();
}

Lines udevLines(const Event& event, const std::string& port) {
    if (event.name == "product") {
        return {
            "Error: LightDevice::getComMapping: product attribute: \"\" does not match any "
            "known device type!"};
    }
    if (event.step == Step::Open && !isFoundWithout(event.name)) {
        return {"Error: ORVEX_OpenDevice: ORVEX_OpenDevice: no match with type 65535 at <" + port +
                ">, num scanned: 0"};
    }
    return {};
}

}  // namespace

std::optional<std::string> lineOf(const Event& event) {
    const int error = event.fault.error;
    switch (event.call) {
        case Call::Open:
        case Call::Duplicate:
            return systemError("SerialLink::connect:", "open", error);
        case Call::GetSettings:
            return systemError("SerialLink::connect:", "tcgetattr", error);
        case Call::SetSettings:
            return systemError((isConfiguring(event) ? "SerialLink::connect:" : releasing(event)) +
                                   " set tty attributes.",
                               "tcsetattr", error);
        case Call::Close:
            if (isDuplicated(event)) {
                return std::nullopt;
            }
            return systemError(releasing(event) + " close handle.", "tcsetattr", error);
        case Call::Discard:
            return systemError("SerialLink::purge:", "ioctl", error);
        case Call::Read:
            return event.fault.effect == Effect::ReadsNothing
                       ? "Error: SerialLink::recvArray: read returned with EOF (0)"
                       : systemError("SerialLink::recvArray:", "read", error);
        case Call::Write:
            return event.fault.effect == Effect::WritesShort
                       ? "Error: SerialLink::sendArray: written bytes: " +
                             std::to_string(event.length - 1) +
                             " != requested len: " + std::to_string(event.length)
                       : systemError("SerialLink::sendArray:", "write", error);
        default:
            return std::nullopt;
    }
}

Lines errorLinesOf(const Event& event, const std::string& port) {
    switch (event.call) {
        case Call::Open:
        case Call::Duplicate:
            return {"Error: SerialLink::connect: open port: " + port, *lineOf(event),
                    "Error: LightDevice::openConnection: connect() failed: 2689683463"};
        case Call::GetSettings:
            return {*lineOf(event),
                    "Error: LightDevice::openConnection: connect() failed: 2152812547"};
        case Call::SetSettings:
            if (isConfiguring(event)) {
                return {*lineOf(event),
                        "Error: LightDevice::openConnection: connect() failed: 2152812547"};
            }
            return {*lineOf(event)};
        case Call::Close:
            return isDuplicated(event) ? Lines{} : Lines{*lineOf(event)};
        case Call::Discard:
        case Call::Read:
        case Call::Write:
            return exchangeLines(event);
        case Call::Udev:
            return udevLines(event, port);
        default:
            return {};
    }
}

std::uint32_t statusOf(const Event& event) {
    const bool isOpening = event.step == Step::Open;
    const bool isWithoutStatus = event.step == Step::Close || event.step == Step::CloseAgain;
    if (isWithoutStatus || event.fault.effect == Effect::ReadsNothing) {
        return kOk;
    }
    switch (event.call) {
        case Call::Open:
        case Call::Duplicate:
        case Call::GetSettings:
            return kNoDevice;
        case Call::SetSettings:
            return isConfiguring(event) ? kNoDevice : kOk;
        case Call::Discard:
            return kIo;
        case Call::Write:
            return kSend;
        case Call::Read:
            return kRecv;
        case Call::Udev:
            return isOpening && !isFoundWithout(event.name) ? kNoDevice : kOk;
        default:
            return kOk;
    }
}

bool isKnownStatus(std::uint32_t status) {
    constexpr std::uint32_t kKnown[] = {0x00000000, 0x00005000, 0xA0515001, 0xA0515002, 0xA0515006,
                                        0xA0515007, 0xA0515013, 0xA0515019, 0xA051501A, 0x80513002,
                                        0x80515001, 0x80515002, 0x80515003, 0x80515020, 0x80517006};
    return std::find(std::begin(kKnown), std::end(kKnown), status) != std::end(kKnown);
}

}  // namespace orvex_faults
