#include "tools/orvex-sim/trace_writer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <utility>

#include "tools/common/models.h"
#include "tools/orvex-sim/failure.h"
#include "tools/orvex-sim/trace_text.h"

namespace orvex::tools {

namespace {

constexpr mode_t kReadableByAll = 0666;

sim::Descriptor openForWriting(const std::string& path) {
    const int file =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, kReadableByAll);
    if (file < 0) {
        throw Failure(kNotWritten, "--trace " + path + ": " + errorText(errno));
    }
    return sim::Descriptor(file);
}

std::string secondsText(std::chrono::duration<double> time) {
    char text[32];
    std::snprintf(text, sizeof text, "%12.6f", time.count());
    return text;
}

}  // namespace

TraceWriter::TraceWriter(std::string path) : path_(std::move(path)), file_(openForWriting(path_)) {
    const std::string head = "# orvex-sim trace 1\n# seconds, device, > to or < from it, bytes\n";
    if (::write(file_.get(), head.data(), head.size()) != static_cast<ssize_t>(head.size())) {
        throw Failure(kNotWritten, "--trace " + path_ + ": " + errorText(errno));
    }
}

TraceWriter::~TraceWriter() {
    finish();
}

void TraceWriter::introduce(unsigned device, OrvexType model, const std::string& place) {
    const std::lock_guard lock(mutex_);
    write("device " + std::to_string(device) + " " + modelName(model) + " at " + place + "\n");
}

void TraceWriter::add(unsigned device, sim::Direction direction, std::string_view bytes) {
    const std::lock_guard lock(mutex_);
    for (const char byte : bytes) {
        addByte(device, direction, byte);
    }
}

void TraceWriter::addPlugging(unsigned device, bool pluggedIn) {
    const std::lock_guard lock(mutex_);
    finishLine(device, lines_[device]);
    writeEvent(device, Clock::now(), pluggedIn ? "+ plugged in" : "- unplugged");
}

bool TraceWriter::finish() {
    const std::lock_guard lock(mutex_);
    for (auto& [device, line] : lines_) {
        finishLine(device, line);
    }
    return error_ == 0;
}

void TraceWriter::addByte(unsigned device, sim::Direction direction, char byte) {
    Line& line = lines_[device];
    if (line.direction != direction) {
        finishLine(device, line);
        line.direction = direction;
    }
    if (line.bytes.empty()) {
        line.begun = Clock::now();
    }
    line.bytes += byte;
    const bool isPresence = direction == sim::Direction::toDevice && line.bytes == "A";
    if (byte == '\r' || isPresence) {
        finishLine(device, line);
    }
}

void TraceWriter::finishLine(unsigned device, Line& line) {
    if (!line.bytes.empty()) {
        const char* mark = line.direction == sim::Direction::toDevice ? "> " : "< ";
        writeEvent(device, line.begun, mark + printable(line.bytes));
        line.bytes.clear();
    }
}

void TraceWriter::writeEvent(unsigned device, Clock::time_point when, const std::string& text) {
    write(secondsText(when - begun_) + " " + std::to_string(device) + " " + text + "\n");
}

void TraceWriter::write(const std::string& text) {
    for (std::size_t done = 0; error_ == 0 && done < text.size();) {
        const ssize_t count = ::write(file_.get(), text.data() + done, text.size() - done);
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            error_ = errno;
            std::cerr << "orvex-sim: --trace " + path_ + ": " + errorText(error_) +
                             "; nothing more is written to it\n";
        }
    }
}

int codeWithTrace(int code, TraceWriter* trace) {
    const bool isWritten = trace == nullptr || trace->finish();
    return isWritten || code != kDone ? code : kNotWritten;
}

sim::Observer observerFor(TraceWriter* trace, unsigned device) {
    if (trace == nullptr) {
        return {};
    }
    return [trace, device](sim::Direction direction, std::string_view bytes) {
        trace->add(device, direction, bytes);
    };
}

}  // namespace orvex::tools
