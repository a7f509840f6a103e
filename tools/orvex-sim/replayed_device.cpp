#include "tools/orvex-sim/replayed_device.h"

#include <algorithm>
#include <utility>

#include "tools/common/models.h"
#include "tools/orvex-sim/trace_text.h"

namespace orvex::tools {

namespace {

std::string inQuotes(const std::string& bytes) {
    return "\"" + printable(bytes) + "\"";
}

bool begins(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

}  // namespace

Replay::Replay(std::string path, TraceDevice device, DepartureReport report)
    : path_(std::move(path)), device_(std::move(device)), report_(std::move(report)) {}

std::vector<sim::Transmission> Replay::receive(std::string_view bytes) {
    std::vector<sim::Transmission> out;
    received_ += bytes;
    while (!departed_ && !received_.empty()) {
        const Fit found = fit();
        if (found == Fit::part) {
            return out;
        }
        if (found == Fit::whole) {
            answer(out);
        } else {
            depart(inQuotes(received_));
        }
    }
    if (departed_) {
        refuse(out);
    }
    return out;
}

void Replay::finish() {
    if (!departed_ && !isAtEnd()) {
        depart(received_.empty() ? "nothing more" : inQuotes(received_));
    }
}

Replay::Fit Replay::fit() const {
    if (isAtEnd()) {
        return Fit::none;
    }
    const std::string& request = device_.entries[next_].bytes;
    if (begins(received_, request)) {
        return Fit::whole;
    }
    return begins(request, received_) ? Fit::part : Fit::none;
}

/// Takes the next request as asked and says what followed it.
void Replay::answer(std::vector<sim::Transmission>& out) {
    received_.erase(0, device_.entries[next_].bytes.size());
    for (++next_; !isAtEnd(); ++next_) {
        const TraceEntry& entry = device_.entries[next_];
        if (entry.direction == sim::Direction::toDevice) {
            return;
        }
        out.push_back({entry.bytes, {}, false, false});
    }
}

void Replay::depart(const std::string& got) {
    departed_ = true;
    const std::string who =
        "device " + std::to_string(device_.number) + " (" + modelName(device_.model) + "): ";
    if (isAtEnd()) {
        report_(path_ + ": " + who + "expected nothing more, got " + got);
        return;
    }
    const TraceEntry& entry = device_.entries[next_];
    report_(path_ + ":" + std::to_string(entry.line) + ": " + who + "expected " +
            inQuotes(entry.bytes) + ", got " + got);
}

void Replay::refuse(std::vector<sim::Transmission>& out) {
    const auto requests = std::count(received_.begin(), received_.end(), '\r');
    for (auto k = requests; k > 0; --k) {
        out.push_back({"e\r", {}, false, false});
    }
    received_.clear();
}

ReplayedDevice::ReplayedDevice(const std::string& tracePath, const TraceDevice& device,
                               const DepartureReport& report)
    : replay_(tracePath, device, report),
      link_(directory_.path() + "/ttyACM0"),
      port_(link_),
      server_(std::make_unique<sim::LineServer>(port_.master(), replay_, [] {})) {}

bool ReplayedDevice::finish() {
    server_.reset();
    replay_.finish();
    return !replay_.hasDeparted();
}

}  // namespace orvex::tools
