#include "tests/fuzz/support/script.h"

namespace orvex_fuzz {

namespace {

constexpr int kRepetitions = 500;
constexpr Answer kTimeOut{Answer::Kind::TimeOut, 0};

Answer byte(char value) {
    return {Answer::Kind::Byte, value};
}

}  // namespace

std::string_view Script::takeLine() noexcept {
    const std::size_t end = rest_.find('\n');
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    return line;
}

std::optional<std::string_view> Script::nextStep() noexcept {
    while (!rest_.empty()) {
        const std::string_view line = takeLine();
        if (line.empty() || line.front() != '<') {
            return line;
        }
    }
    return std::nullopt;
}

std::optional<std::string_view> Script::nextReply() noexcept {
    if (rest_.empty() || rest_.front() != '<') {
        return std::nullopt;
    }
    return takeLine().substr(1);
}

Reply::Reply(std::string_view line) noexcept : rest_(line) {
    if (line.size() >= 2 && line[0] == '\\' &&
        std::string_view("pws").find(line[1]) != std::string_view::npos) {
        fault_ = line[1];
        rest_.remove_prefix(2);
    }
}

Answer Reply::next() noexcept {
    if (repetitions_ > 0) {
        --repetitions_;
        return byte(repeated_);
    }
    if (rest_.empty()) {
        return afterText();
    }
    const char c = take();
    return c == '\\' ? afterBackslash() : byte(c);
}

Answer Reply::afterText() noexcept {
    if (isTerminated_) {
        isTerminated_ = false;
        return byte('\r');
    }
    return kTimeOut;
}

Answer Reply::afterBackslash() noexcept {
    const char c = take();
    switch (c) {
        case 'r':
            return byte('\r');
        case 'n':
            return byte('\n');
        case '0':
            return byte('\0');
        case 't':
            return kTimeOut;
        case 'e':
            return {Answer::Kind::Failure, 0};
        case '*':
            repeated_ = take();
            repetitions_ = kRepetitions - 1;
            return byte(repeated_);
        case '-':
            rest_ = {};
            isTerminated_ = false;
            return kTimeOut;
        default:
            return byte(c);
    }
}

char Reply::take() noexcept {
    if (rest_.empty()) {
        return '\\';
    }
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
}

}  // namespace orvex_fuzz
