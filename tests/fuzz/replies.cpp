// The reading of replies: numbers, pieces and lists, against a model that works digit by digit.
//
// The whole input is one reply.
#include "device/reply.h"

#include <algorithm>

#include "device/intensity.h"
#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"

using orvex_fuzz::holds;

namespace {

void checkNumbers(const std::string& reply, const std::vector<std::int32_t>& expected) {
    const std::int32_t number = orvex::parseNumber(reply);
    holds(number == orvex_fuzz::decimalAt(reply), "a number is read as its digits say");
    holds(orvex::tenfold(number) == orvex_fuzz::timesTen(number), "ten times is clamped");
    holds(orvex::parseNumbers(reply) == expected, "numbers are read between commas");

    std::string joined;
    for (const std::int32_t value : expected) {
        joined += joined.empty() ? "" : ", ";
        joined += std::to_string(value);
    }
    holds(orvex::join(expected, ", ") == joined, "numbers are joined in decimal");
}

void checkPieces(std::string_view reply, std::string_view separators) {
    const auto pieces = orvex::split(reply, separators);
    std::size_t used = pieces.size() - 1;
    const std::size_t size = reply.size();
    for (const std::string_view piece : pieces) {
        holds(piece == orvex_fuzz::takePiece(reply, separators), "pieces are between separators");
        used += piece.size();
    }
    holds(used == size, "the pieces are the whole reply, with a separator between two");
}

/// The first four numbers as a channel's limits and what is asked of it.
void checkIntensity(std::vector<std::int32_t> numbers) {
    numbers.resize(4);
    OrvexChannel channel{};
    channel.iMinIntensity = numbers[1];
    channel.iMaxIntensity = numbers[2];
    channel.iIntensityStep = std::max(numbers[3], 0);
    const std::int32_t value = orvex::limitedIntensity(numbers[0], channel);
    holds(value >= channel.iMinIntensity, "an intensity is not below its lower limit");
    holds(value <= std::max(channel.iMinIntensity, channel.iMaxIntensity),
          "an intensity is not above its upper limit");
    const bool isAtLimit = value == channel.iMinIntensity || value == channel.iMaxIntensity;
    const std::int32_t step = std::max(channel.iIntensityStep, 1);
    holds(isAtLimit || value == numbers[0] - numbers[0] % step, "an intensity is whole steps");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string reply(reinterpret_cast<const char*>(data), size);
    const std::vector<std::int32_t> numbers = orvex_fuzz::decimalsIn(reply);
    checkNumbers(reply, numbers);
    checkPieces(reply, ",\r");
    checkIntensity(numbers);
    return 0;
}
