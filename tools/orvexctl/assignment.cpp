#include "tools/orvexctl/assignment.h"

#include <charconv>
#include <string_view>

#include "device/reply.h"
#include "tools/orvexctl/failure.h"

namespace orvex::tools {

namespace {

constexpr double kLargestPercent = 100;
constexpr const char* kAssignmentExamples = "examples: 1=45%  3=on  4=off,20%";
constexpr const char* kPositionExamples = "examples: 1  1,3  2-4  all";

/// A piece of an argument that knows where it stands.
struct Piece {
    const std::string& whole;
    std::string_view text;
    const char* examples;

    [[nodiscard]] Piece of(std::string_view part) const { return {whole, part, examples}; }
    [[noreturn]] void fail(const std::string& problem) const {
        const auto character = static_cast<std::size_t>(text.data() - whole.data()) + 1;
        throw Failure(ExitCode::usage,
                      "\"" + whole + "\", character " + std::to_string(character) + ": " +
                          (text.empty() ? "" : "\"" + std::string(text) + "\" ") + problem,
                      examples);
    }
};

template <typename Number>
bool parseWhole(std::string_view text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end;
}

int parsePosition(const Piece& piece) {
    int position = 0;
    if (piece.text.empty()) {
        piece.fail("a channel number is missing here");
    }
    if (!parseWhole(piece.text, position) || position < 1) {
        piece.fail("is no channel number; they count from 1");
    }
    return position;
}

double parsePercent(const Piece& piece) {
    double percent = 0;
    const Piece number = piece.of(piece.text.substr(0, piece.text.size() - 1));
    if (number.text.empty() ||
        number.text.find_first_not_of("0123456789.-+") != std::string::npos ||
        !parseWhole(number.text, percent)) {
        piece.fail("is no percentage");
    }
    if (percent < 0 || percent > kLargestPercent) {
        piece.fail("is not from 0% to 100%");
    }
    return percent;
}

void parseSetting(const Piece& piece, ChannelChange& change) {
    if (piece.text == "on" || piece.text == "off") {
        if (change.on) {
            piece.fail("is the second state of this channel");
        }
        change.on = piece.text == "on";
    } else if (!piece.text.empty() && piece.text.back() == '%') {
        if (change.percent) {
            piece.fail("is the second intensity of this channel");
        }
        change.percent = parsePercent(piece);
    } else if (piece.text.empty()) {
        piece.fail("a setting is missing here: on, off or a percentage");
    } else {
        piece.fail("is neither on, off nor a percentage like 45%");
    }
}

/// "3" or "2-4".
void parseRange(const Piece& piece, std::vector<int>& positions) {
    const std::size_t dash = piece.text.find('-', 1);
    const int first = parsePosition(piece.of(piece.text.substr(0, dash)));
    int last = first;
    if (dash != std::string_view::npos) {
        last = parsePosition(piece.of(piece.text.substr(dash + 1)));
    }
    if (last < first || last - first > ORVEX_MAX_CHANNEL) {
        piece.fail("is no range of channels");
    }
    for (int position = first; position <= last; ++position) {
        positions.push_back(position);
    }
}

}  // namespace

ChannelChange parseAssignment(const std::string& text) {
    const Piece whole{text, text, kAssignmentExamples};
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) {
        whole.fail("has no \"=\"");
    }
    ChannelChange change;
    change.position = parsePosition(whole.of(whole.text.substr(0, sign)));
    for (const std::string_view setting : split(whole.text.substr(sign + 1), ",")) {
        parseSetting(whole.of(setting), change);
    }
    return change;
}

std::vector<int> parsePositions(const std::vector<std::string>& texts) {
    std::vector<int> positions;
    for (const std::string& text : texts) {
        const Piece whole{text, text, kPositionExamples};
        if (text == "all") {
            if (texts.size() > 1) {
                whole.fail("stands alone");
            }
            return {};
        }
        for (const std::string_view range : split(text, ",")) {
            parseRange(whole.of(range), positions);
        }
    }
    return positions;
}

}  // namespace orvex::tools
