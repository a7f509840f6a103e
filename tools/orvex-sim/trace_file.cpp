#include "tools/orvex-sim/trace_file.h"

#include <algorithm>
#include <sstream>

#include "tools/common/models.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/text_file.h"
#include "tools/orvex-sim/trace_text.h"

namespace orvex::tools {

namespace {

constexpr const char* kFirstLine = "# orvex-sim trace 1";
constexpr unsigned kMostDevices = 999;

/// Builds up devices from lines.
class Reader {
  public:
    explicit Reader(const std::string& path) : path_(path) {}

    void read(const std::string& line);
    [[nodiscard]] std::vector<TraceDevice> result();

  private:
    [[noreturn]] void fail(const std::string& problem) const {
        throw Failure(kBadInput, path_ + ":" + std::to_string(number_) + ": " + problem);
    }
    void readDevice(std::istringstream& words);
    void readEvent(const std::string& line);
    void addEntry(TraceDevice& device, double seconds, char mark, const std::string& text);
    [[nodiscard]] TraceDevice* find(unsigned number);

    const std::string path_;
    std::size_t number_ = 0;
    std::vector<TraceDevice> devices_;
};

void Reader::read(const std::string& line) {
    ++number_;
    if (number_ == 1 && line != kFirstLine) {
        fail("this is no trace: it does not begin with \"" + std::string(kFirstLine) + "\"");
    }
    if (line.empty() || line.front() == '#') {
        return;
    }
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (first == "device") {
        readDevice(words);
    } else {
        readEvent(line);
    }
}

std::vector<TraceDevice> Reader::result() {
    if (devices_.empty()) {
        number_ += number_ == 0 ? 1 : 0;
        fail("the trace tells of no device");
    }
    return devices_;
}

void Reader::readDevice(std::istringstream& words) {
    TraceDevice device;
    std::string model;
    std::string at;
    words >> device.number >> model >> at >> std::ws;
    std::getline(words, device.path);
    const bool isNumber = device.number >= 1 && device.number <= kMostDevices;
    if (words.fail() || at != "at" || !isNumber) {
        fail("expected \"device NUMBER MODEL at PATH\"");
    }
    const auto known = modelNamed(model);
    if (!known) {
        fail(unknownModelText(model));
    }
    if (find(device.number) != nullptr) {
        fail("there is a device " + std::to_string(device.number) + " already");
    }
    device.model = *known;
    devices_.push_back(device);
}

void Reader::readEvent(const std::string& line) {
    std::istringstream words(line);
    double seconds = 0;
    unsigned number = 0;
    char mark = 0;
    words >> seconds >> number >> mark;
    const bool isKnown = std::string("<>+-").find(mark) != std::string::npos;
    if (words.fail() || !isKnown || words.get() != ' ') {
        fail("expected \"SECONDS DEVICE > BYTES\"");
    }
    TraceDevice* const device = find(number);
    if (device == nullptr) {
        fail("there is no device " + std::to_string(number));
    }
    std::string text;
    std::getline(words, text);
    if (mark == '<' || mark == '>') {
        addEntry(*device, seconds, mark, text);
    }
}

void Reader::addEntry(TraceDevice& device, double seconds, char mark, const std::string& text) {
    const auto bytes = bytesOf(text);
    if (!bytes || bytes->empty()) {
        fail("\"" + text + "\" is no text of a trace");
    }
    if (mark == '<' && device.entries.empty()) {
        fail("an answer that nothing was asked for");
    }
    TraceEntry entry;
    entry.line = number_;
    entry.time = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::duration<double>(seconds));
    entry.direction = mark == '>' ? sim::Direction::toDevice : sim::Direction::toClient;
    entry.bytes = *bytes;
    device.entries.push_back(entry);
}

TraceDevice* Reader::find(unsigned number) {
    const auto found =
        std::find_if(devices_.begin(), devices_.end(),
                     [number](const TraceDevice& device) { return device.number == number; });
    return found != devices_.end() ? &*found : nullptr;
}

}  // namespace

std::vector<TraceDevice> readTrace(const std::string& path) {
    std::istringstream text(readText(path));
    Reader reader(path);
    std::string line;
    while (std::getline(text, line)) {
        reader.read(line);
    }
    return reader.result();
}

}  // namespace orvex::tools
