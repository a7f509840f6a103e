#include "sim/line_server.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <system_error>
#include <utility>

namespace orvex::sim {

namespace {

Descriptor makeEvent() {
    const int fd = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (fd < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return Descriptor(fd);
}

bool isTemporary(int error) {
    return error == EAGAIN || error == EINTR;
}

/// A time-out for poll() that does not end too early.
int millisecondsUntil(Clock::time_point due) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 60'000));
}

}  // namespace

LineServer::LineServer(int line, Talker& talker, std::function<void()> lineEnds, Observer observer)
    : line_(line),
      talker_(talker),
      lineEnds_(std::move(lineEnds)),
      observer_(std::move(observer)),
      wakeUp_(makeEvent()),
      thread_([this] { run(); }) {}

LineServer::~LineServer() {
    stopping_ = true;
    ::eventfd_write(wakeUp_.get(), 1);
    thread_.join();
}

void LineServer::run() {
    while (!stopping_) {
        if (!serveOnce()) {
            lineEnds_();
            return;
        }
    }
}

/// @return false when the line is to end
bool LineServer::serveOnce() {
    const short events = awaitLine();
    if ((events & ~POLLOUT) != 0 && !receive()) {
        return false;
    }
    return sendDue();
}

/// Sleeps until the client has sent something, something can be sent, or the server is to stop.
short LineServer::awaitLine() {
    const int wait = frontDue_ ? millisecondsUntil(*frontDue_) : -1;
    const bool sending = wait == 0;
    std::array<pollfd, 2> ends{};
    ends[0] = {line_, static_cast<short>(sending ? POLLIN | POLLOUT : POLLIN), 0};
    ends[1] = {wakeUp_.get(), POLLIN, 0};
    ::poll(ends.data(), ends.size(), sending ? -1 : wait);
    return ends[0].revents;
}

/// @return false when the line has ended
bool LineServer::receive() {
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(line_, buffer.data(), buffer.size());
    if (count <= 0) {
        return count < 0 && isTemporary(errno);
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
    if (observer_) {
        observer_(Direction::toDevice, bytes);
    }
    enqueue(talker_.receive(bytes));
    return true;
}

void LineServer::enqueue(std::vector<Transmission> transmissions) {
    const bool frontStays = !outgoing_.empty() && !outgoing_.front().endsAtNextRequest;
    outgoing_.erase(std::remove_if(outgoing_.begin(), outgoing_.end(),
                                   [](const Transmission& old) { return old.endsAtNextRequest; }),
                    outgoing_.end());
    std::move(transmissions.begin(), transmissions.end(), std::back_inserter(outgoing_));
    if (!frontStays) {
        scheduleFront();
    }
}

void LineServer::scheduleFront() {
    frontDue_.reset();
    if (!outgoing_.empty()) {
        frontDue_ = Clock::now() + outgoing_.front().delay;
    }
}

/// @return false when the device hangs up
bool LineServer::sendDue() {
    while (frontDue_ && *frontDue_ <= Clock::now()) {
        if (outgoing_.front().hangUp) {
            return false;
        }
        if (!sendFront()) {
            break;
        }
        outgoing_.pop_front();
        scheduleFront();
    }
    return true;
}

/// @return false when the line takes no more for now
bool LineServer::sendFront() {
    std::string& bytes = outgoing_.front().bytes;
    const ssize_t count = ::write(line_, bytes.data(), bytes.size());
    if (count < 0) {
        // An ended line shows at the next read.
        return !isTemporary(errno);
    }
    const auto sent = static_cast<std::size_t>(count);
    if (observer_) {
        observer_(Direction::toClient, std::string_view(bytes).substr(0, sent));
    }
    bytes.erase(0, sent);
    return bytes.empty();
}

}  // namespace orvex::sim
