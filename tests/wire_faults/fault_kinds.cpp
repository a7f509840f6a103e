#include "tests/wire_faults/fault_kinds.h"

#include <random>
#include <string>

namespace orvex_test {

namespace {

/// Bytes of any value but the carriage return, and at least two: "e" alone would be a reply.
std::string garbage(unsigned seed) {
    constexpr unsigned kLongest = 200;
    std::minstd_rand random(seed);
    std::string bytes(2 + random() % kLongest, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random() / 7 % 256);
        byte = byte == '\r' ? 'x' : byte;
    }
    return bytes;
}

}  // namespace

const char* nameOf(FaultKind kind) {
    switch (kind) {
        case FaultKind::silence:
            return "Silence";
        case FaultKind::hangUp:
            return "HangUp";
        case FaultKind::errorReply:
            return "ErrorReply";
        case FaultKind::garbage:
            return "Garbage";
        case FaultKind::unfinishedGarbage:
            return "UnfinishedGarbage";
        case FaultKind::byteMissing:
            return "ByteMissing";
        case FaultKind::drip:
            return "Drip";
        case FaultKind::endless:
            return "Endless";
    }
    return "";
}

orvex::sim::Fault faultOf(FaultKind kind, unsigned seed) {
    constexpr auto kDripPause = std::chrono::milliseconds(20);
    // A terminal takes so many bytes in one piece: a second one might come after the next request
    // has discarded the first, and would be taken for its reply.
    constexpr std::size_t kEndless = 2000;
    switch (kind) {
        case FaultKind::silence:
            break;
        case FaultKind::hangUp:
            return orvex::sim::hangUp();
        case FaultKind::errorReply:
            return orvex::sim::errorReply();
        case FaultKind::garbage:
            return orvex::sim::scripted(garbage(seed) + '\r');
        case FaultKind::unfinishedGarbage:
            return orvex::sim::scripted(garbage(seed));
        case FaultKind::byteMissing:
            return orvex::sim::unterminated();
        case FaultKind::drip:
            return orvex::sim::slowly(kDripPause);
        case FaultKind::endless:
            return orvex::sim::endless(kEndless);
    }
    return orvex::sim::silence();
}

}  // namespace orvex_test
