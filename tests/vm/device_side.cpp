#include "tests/vm/device_side.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "sim/line_server.h"

namespace orvex_test {

using orvex::sim::Descriptor;
using orvex::sim::Direction;

namespace {

/// The line in raw mode; -1 when it cannot be had at the moment.
Descriptor openLine(const std::string& path) {
    Descriptor line(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    termios raw{};
    if (::tcgetattr(line.get(), &raw) != 0) {
        return Descriptor();
    }
    ::cfmakeraw(&raw);
    return ::tcsetattr(line.get(), TCSANOW, &raw) == 0 ? std::move(line) : Descriptor();
}

}  // namespace

DeviceSide::DeviceSide(std::string line, const orvex::sim::DeviceSetup& setup)
    : path_(std::move(line)), conversation_(setup) {
    Descriptor opened = openLine(path_);
    if (opened.get() < 0) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
    thread_ = std::thread([this, opened = std::move(opened)]() mutable { run(std::move(opened)); });
}

DeviceSide::~DeviceSide() {
    {
        const std::lock_guard<std::mutex> guard(mutex_);
        stopping_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void DeviceSide::run(Descriptor line) {
    for (bool stopping = false; !stopping;) {
        if (line.get() >= 0) {
            serve(line);
        } else {
            ::poll(nullptr, 0, 10);
        }
        line = Descriptor();
        const std::lock_guard<std::mutex> guard(mutex_);
        stopping = stopping_;
        if (!stopping) {
            line = openLine(path_);
        }
    }
}

/// Answers until the line ends, or the device itself.
void DeviceSide::serve(const Descriptor& line) {
    conversation_.forgetPartialRequest();
    const auto lineEnds = [this] {
        const std::lock_guard<std::mutex> guard(mutex_);
        ended_ = true;
        changed_.notify_one();
    };
    const auto count = [this](Direction direction, std::string_view bytes) {
        sent_ += direction == Direction::toClient ? bytes.size() : 0;
    };
    const orvex::sim::LineServer server(line.get(), conversation_, lineEnds, count);
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return ended_ || stopping_; });
    ended_ = false;
}

}  // namespace orvex_test
