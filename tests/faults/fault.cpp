#include "tests/faults/fault.h"

#include <cerrno>

namespace orvex_faults {

namespace {

std::vector<Fault> failures(const std::vector<int>& errors) {
    std::vector<Fault> faults;
    for (const int error : errors) {
        faults.push_back({Effect::Fails, error});
    }
    return faults;
}

std::vector<Fault> with(std::vector<Fault> faults, Effect effect) {
    faults.push_back({effect, 0});
    return faults;
}

const char* errorName(int error) {
    switch (error) {
        case EACCES:
            return "EACCES";
        case EAGAIN:
            return "EAGAIN";
        case EBUSY:
            return "EBUSY";
        case EINTR:
            return "EINTR";
        case EIO:
            return "EIO";
        case EMFILE:
            return "EMFILE";
        case ENODEV:
            return "ENODEV";
        case ENOENT:
            return "ENOENT";
        case ENOSPC:
            return "ENOSPC";
        case ENOTTY:
            return "ENOTTY";
        case ENXIO:
            return "ENXIO";
        default:
            return "null";
    }
}

}  // namespace

bool servesLog(Call call) {
    return call == Call::SinkOpen || call == Call::SinkWrite || call == Call::SinkFlush ||
           call == Call::SinkClose;
}

std::vector<Fault> faultsOf(Call call) {
    switch (call) {
        case Call::Open:
            return failures({ENOENT, EACCES, EBUSY, EIO, ENODEV, EMFILE});
        case Call::Duplicate:
            return failures({EMFILE, EINTR});
        case Call::GetSettings:
        case Call::SetSettings:
        case Call::Discard:
            return failures({ENOTTY, EIO});
        case Call::Write:
            return with(failures({EIO, EINTR, EAGAIN, ENXIO}), Effect::WritesShort);
        case Call::Read:
            return with(failures({EIO, EINTR, EAGAIN, ENXIO}), Effect::ReadsNothing);
        case Call::Close:
            return failures({EIO, EINTR});
        case Call::Udev:
            return failures({0});
        case Call::SinkOpen:
            return failures({EACCES, EMFILE});
        case Call::SinkWrite:
        case Call::SinkFlush:
        case Call::SinkClose:
            return failures({ENOSPC, EIO});
    }
    return {};
}

const char* nameOf(Call call) {
    constexpr const char* kNames[] = {
        "open",  "fcntl", "tcgetattr", "tcsetattr",  "ioctl",      "write",     "read",
        "close", "udev",  "sink open", "sink write", "sink flush", "sink close"};
    return kNames[static_cast<std::size_t>(call)];
}

const char* nameOf(Span span) {
    constexpr const char* kNames[] = {"once", "from now on", "everything from now on"};
    return kNames[static_cast<std::size_t>(span)];
}

const char* nameOf(Step step) {
    constexpr const char* kNames[] = {"scan",        "open",       "get record", "set record",
                                      "switch on",   "switch off", "command",    "open again",
                                      "close again", "close",      "unplug"};
    return kNames[static_cast<std::size_t>(step)];
}

std::string nameOf(const Fault& fault) {
    switch (fault.effect) {
        case Effect::ReadsNothing:
            return "reads nothing";
        case Effect::WritesShort:
            return "writes short";
        default:
            return errorName(fault.error);
    }
}

}  // namespace orvex_faults
