// Log lines: what the functions and the Logger make of messages, formats and numbers.
//
// The first byte chooses where lines go, the next four the mask and the class, eight a number; the
// rest is the message.
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "log/log.h"
#include "tests/fuzz/support/numbers.h"
#include "tests/fuzz/support/properties.h"

using orvex_fuzz::digitsOf;
using orvex_fuzz::holds;

namespace {

std::string received;

void receive(const char* line) {
    received += line;
    received += '\n';
}

/// A file in memory as the log's destination.
class LogFile {
  public:
    LogFile() : descriptor_(::memfd_create("log", 0)) {
        path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    [[nodiscard]] const std::string& path() const { return path_; }

    /// What was written since the last time.
    std::string take() {
        std::string text(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
        holds(
            ::pread(descriptor_, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()),
            "the log file can be read");
        holds(::ftruncate(descriptor_, 0) == 0, "the log file can be emptied");
        return text;
    }

  private:
    int descriptor_;
    std::string path_;
};

LogFile& logFile() {
    static LogFile& file = *new LogFile;
    return file;
}

struct Settings {
    int method;
    std::uint32_t mask;
    std::uint32_t level;
};

/// Everything that was logged since the last time, without the lines' time stamps.
std::string takeLog(const Settings& settings) {
    std::string text = settings.method == LOG_METHOD_FILE ? logFile().take() : received;
    received.clear();
    if ((settings.mask & LOG_BIT_TIMESTAMP) != 0 && !text.empty()) {
        constexpr std::string_view shape = "[2024-05-01 13:02:07] ";
        holds(text.size() > shape.size() && text[0] == '[' && text[20] == ']' && text[21] == ' ',
              "a line begins with its time");
        for (const std::size_t digit : {1U, 4U, 6U, 7U, 9U, 10U, 12U, 13U, 15U, 16U, 18U, 19U}) {
            holds(text[digit] >= '0' && text[digit] <= '9', "a time has digits");
        }
        text.erase(0, shape.size());
    }
    return text;
}

/// The one line of a message: its class before it, unless the class is off.
std::string lineOf(const Settings& settings, const std::string& message) {
    const bool isDiscarded =
        (settings.mask & settings.level) == 0 ||
        (settings.method != LOG_METHOD_FILE && settings.method != LOG_METHOD_CALLBACK);
    if (isDiscarded) {
        return "";
    }
    std::string line = (settings.level & LOG_BIT_ERROR) != 0 ? "Error: " : "";
    line += (settings.level & LOG_BIT_WARNING) != 0 ? "Warning: " : "";
    line += message;
    // A callback is given a C text.
    const bool isText = settings.method == LOG_METHOD_CALLBACK;
    return (isText ? line.substr(0, line.find('\0')) : line) + "\n";
}

void checkMessage(const Settings& settings, const std::string& message) {
    log(settings.level, message);
    holds(takeLog(settings) == lineOf(settings, message), "a message is one line");
    logerr(message);
    const Settings error{settings.method, settings.mask, LOG_BIT_ERROR};
    holds(takeLog(error) == lineOf(error, message), "an error is a line of its class");
    const Settings progress{settings.method, settings.mask, LOG_BIT_INFO};
    log(message);
    holds(takeLog(progress) == lineOf(progress, message), "a message without a class is progress");
    clog("%s", message.c_str());
    const std::string text = message.substr(0, message.find('\0'));
    holds(takeLog(progress) == lineOf(progress, text), "a format without a class is progress");
}

/// The header is written whatever the mask.
void checkHeader(const Settings& settings) {
    logHeader();
    const std::string text = takeLog({settings.method, LOG_BIT_INFO, LOG_BIT_INFO});
    if (lineOf({settings.method, LOG_BIT_INFO, LOG_BIT_INFO}, "x").empty()) {
        holds(text.empty(), "a header is discarded like a message");
        return;
    }
    holds(text.find("* log bits: 0x" + digitsOf(settings.mask, 16, false) + "  ") !=
                  std::string::npos &&
              text.find("* log file: " + logFile().path() + " *\n") != std::string::npos,
          "a header tells the settings");
}

void checkFormat(const Settings& settings, const std::string& message, std::uint64_t number) {
    const auto small = static_cast<int>(number);
    const auto letter = static_cast<char>(number >> 32U);
    clog(settings.level, "%s|%d|%X|%o|%c|%%|%5u", message.c_str(), small,
         static_cast<unsigned>(number), static_cast<unsigned>(number), letter,
         static_cast<unsigned>(number >> 48U));
    const std::uint32_t bits = static_cast<std::uint32_t>(number);
    std::string expected = message.substr(0, message.find('\0')) + "|" + std::to_string(small) +
                           "|" + digitsOf(bits, 16, true) + "|" + digitsOf(bits, 8, true) + "|";
    if (letter != '\0') {  // A NUL ends the text.
        const std::string last = digitsOf(number >> 48U, 10, true);
        expected += std::string(1, letter) + "|%|" + std::string(5 - last.size(), ' ') + last;
    }
    holds(takeLog(settings) == lineOf(settings, expected), "a format is filled in");
}

void checkLogger(const Settings& settings, const std::string& message, std::uint64_t number) {
    {
        Logger logger(settings.level);
        logger << message << number << '-' << static_cast<int>(number);
    }
    const std::string body =
        message + std::to_string(number) + "-" + std::to_string(static_cast<int>(number));
    holds(takeLog(settings) == lineOf(settings, body), "what is streamed is one line");
}

template <typename Number>
void checkHexadecimal(Number value, unsigned flags) {
    const bool prefix = (flags & 1U) != 0;
    const bool lowercase = (flags & 2U) != 0;
    const bool fill = (flags & 4U) != 0;
    const auto bits = static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<Number>>(value));
    std::string expected = digitsOf(bits, 16, !lowercase);
    if (fill && expected.size() < 2 * sizeof(Number)) {
        expected.insert(0, 2 * sizeof(Number) - expected.size(), '0');
    }
    holds(to_hexstring(value, prefix, lowercase, fill) == (prefix ? "0x" : "") + expected,
          "a number's hexadecimal digits");
}

void checkHandle(std::uint64_t value) {
    void* const handle = reinterpret_cast<void*>(value);
    const std::string digits = digitsOf(value, 16, false);
    holds(to_hexstring(handle, true, false, false) == "0x" + digits, "a handle's text");
    holds(to_hexstring(handle, false, true, false) == digits, "a handle's digits");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kHead = 13;
    if (size < kHead) {
        return 0;
    }
    // Standard output is libFuzzer's own: 3 stands for a method that discards.
    constexpr int methods[] = {LOG_METHOD_CALLBACK, LOG_METHOD_CALLBACK, 3, LOG_METHOD_FILE};
    // A file costs several times what a callback does: it is for one choice in 256.
    const bool toFile = data[0] == 255;
    Settings settings{methods[toFile ? 3 : data[0] % 3], 0, 0};
    settings.mask = data[1] | ((data[2] & 0x10U) << 8U);
    settings.level = data[3];
    std::uint64_t number = 0;
    std::memcpy(&number, data + 5, sizeof number);
    const std::string message(reinterpret_cast<const char*>(data) + kHead, size - kHead);

    ORVEX_RegisterLogCallback(receive);
    ORVEX_SetLogFile(logFile().path().c_str());
    ORVEX_SetLogMode(settings.method);
    ORVEX_SetLogBits(settings.mask);
    checkMessage(settings, message);
    if (data[4] % 8 == 7) {
        checkHeader(settings);
    }
    checkFormat(settings, message, number);
    checkLogger(settings, message, number);
    checkHexadecimal(static_cast<std::int8_t>(number), data[4]);
    checkHexadecimal(static_cast<std::uint16_t>(number), data[4]);
    checkHexadecimal(static_cast<std::int32_t>(number), data[4]);
    checkHexadecimal(number, data[4]);
    checkHandle(number);
    return 0;
}
