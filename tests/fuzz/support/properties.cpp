#include "tests/fuzz/support/properties.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace orvex_fuzz {

namespace {

constexpr std::uint32_t kStatusCodes[] = {
    0x00000000, 0x00005000, 0xA0515001, 0xA0515002, 0xA0515006, 0xA0515007, 0xA0515013, 0xA0515019,
    0xA051501A, 0x80513002, 0x80515001, 0x80515002, 0x80515003, 0x80515020, 0x80517006};

template <std::size_t N>
bool isTerminated(const char (&text)[N]) {
    return std::memchr(text, '\0', N) != nullptr;
}

}  // namespace

void violated(const char* property) {
    std::fprintf(stderr, "Violated: %s\n", property);
    std::abort();
}

void requireKnownStatus(std::uint32_t status) {
    holds(std::count(std::begin(kStatusCodes), std::end(kStatusCodes), status) == 1,
          "a status code is one of the closed set");
}

void requireSoundRecord(const OrvexStruct& record) {
    holds(record.iSize == 2008, "a record's size is 2008");
    holds(record.iNumChannels >= 0 && record.iNumChannels <= 16, "a record has 0 to 16 channels");
    holds(isTerminated(record.szModelName), "the model's name is terminated");
    holds((record.iCapabilities & ~0x33U) == 0, "capabilities are the known bits");
    for (std::int32_t k = 0; k < record.iNumChannels; ++k) {
        const OrvexChannel& channel = record.aChannels[k];
        holds(isTerminated(channel.szLedName), "an LED's name is terminated");
        holds(channel.iGroup == 0 || channel.iGroup == 1, "a channel's group is 0 or 1");
        holds(channel.iWavelength >= 0, "a wavelength is not negative");
    }
    for (std::size_t n = 0; n < std::size(record.aiGroupSlot); ++n) {
        const std::int32_t slot = record.aiGroupSlot[n];
        holds(slot >= 0 && slot < 16, "a group's slot is a record slot");
        holds(n == 1 || slot == 0, "only group 1 is ever selected");
    }
}

void requireSameRecord(const OrvexStruct& actual, const OrvexStruct& expected) {
    if (std::memcmp(&actual, &expected, sizeof actual) == 0) {
        return;
    }
    const auto* const mine = reinterpret_cast<const unsigned char*>(&actual);
    const auto* const theirs = reinterpret_cast<const unsigned char*>(&expected);
    const auto* const end = mine + sizeof actual;
    const auto* const at = std::mismatch(mine, end, theirs).first;
    std::fprintf(stderr, "The records differ from byte %td on.\n", at - mine);
    violated("the record is what the replies tell");
}

OrvexStruct soundRecordOf(std::uint64_t handle) {
    OrvexStruct record{};
    record.iSize = sizeof record;
    holds(ORVEX_GetOVStruct(handle, &record) == ORVEX_OK, "a record can be read");
    requireSoundRecord(record);
    return record;
}

}  // namespace orvex_fuzz
