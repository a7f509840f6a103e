#include "tests/soak/wire.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace orvex_soak {

namespace {

constexpr int kReadAttempts = 3;
// No call needs so many; one that asks and asks is ended by silence.
constexpr std::size_t kPatience = 60;

Wire* current = nullptr;

int failWith(int error) {
    errno = error;
    return -1;
}

termios settingsAtFirst() {
    termios settings{};
    settings.c_iflag = ICRNL | IXON;
    settings.c_oflag = OPOST | ONLCR;
    settings.c_cflag = CS8 | CREAD | B9600;
    settings.c_lflag = ISIG | ICANON | ECHO;
    settings.c_cc[VMIN] = 1;
    return settings;
}

bool areAsAtFirst(const termios& settings) {
    const termios first = settingsAtFirst();
    return std::memcmp(&settings, &first, sizeof first) == 0;
}

}  // namespace

void Track::beginStep() {
    events.clear();
    failure.reset();
    nextReplyIsLate = false;
    requestsInStep = 0;
}

bool Track::fails(Event::Kind kind) {
    if (!failure || failure->kind != kind || --failure->nth > 0) {
        return false;
    }
    failure.reset();
    return true;
}

Port::Port(Track& track, const orvex::sim::DeviceSetup& setup)
    : track_(track), device_(setup), settings_(settingsAtFirst()) {
    device_.record().keep(false);
}

void Port::opened() {
    track_.events.push_back({Event::Kind::opened});
}

void Port::close() {
    const bool restored = ended_ || areAsAtFirst(settings_);
    track_.events.push_back({restored ? Event::Kind::closed : Event::Kind::closedUnrestored});
    settings_ = settingsAtFirst();
    input_.clear();
}

long Port::read(void* buffer, std::size_t size) {
    if (ended_) {
        return failWith(EIO);
    }
    if (input_.empty()) {
        if (++emptyReads_ == kReadAttempts) {
            input_.swap(late_);
        }
        return 0;
    }
    const std::size_t count = std::min(size, input_.size());
    std::memcpy(buffer, input_.data(), count);
    input_.erase(0, count);
    return static_cast<long>(count);
}

long Port::write(std::string_view bytes) {
    Event event{Event::Kind::sent, std::string(bytes)};
    if (ended_ || track_.fails(Event::Kind::sendRefused)) {
        event.kind = Event::Kind::sendRefused;
        track_.events.push_back(std::move(event));
        return failWith(EIO);
    }
    if (track_.fails(Event::Kind::sendCut)) {
        event.kind = Event::Kind::sendCut;
        track_.events.push_back(std::move(event));
        return static_cast<long>(bytes.size()) - 1;
    }
    emptyReads_ = 0;
    std::string reply = answerTo(bytes);
    (track_.nextReplyIsLate ? late_ : input_) += reply;
    event.reply = track_.nextReplyIsLate ? "" : input_;
    track_.nextReplyIsLate = false;
    track_.events.push_back(std::move(event));
    return static_cast<long>(bytes.size());
}

std::string Port::answerTo(std::string_view bytes) {
    ++track_.requests;
    const bool outOfPatience = ++track_.requestsInStep > kPatience;
    std::string reply;
    for (const orvex::sim::Transmission& transmission : device_.receive(bytes)) {
        ended_ |= transmission.hangUp;
        reply += transmission.bytes;
    }
    return ended_ || outOfPatience ? "" : reply;
}

int Port::flush() {
    if (ended_ || track_.fails(Event::Kind::purgeRefused)) {
        track_.events.push_back({Event::Kind::purgeRefused});
        return failWith(EIO);
    }
    input_.clear();
    track_.events.push_back({Event::Kind::purged});
    return 0;
}

int Port::getSettings(termios& settings) const {
    if (ended_) {
        return failWith(EIO);
    }
    settings = settings_;
    return 0;
}

int Port::setSettings(const termios& settings) {
    if (ended_) {
        return failWith(EIO);
    }
    if (track_.fails(Event::Kind::settingsRefused)) {
        track_.events.push_back({Event::Kind::settingsRefused});
        return failWith(EIO);
    }
    settings_ = settings;
    return 0;
}

Wire::Wire() {
    current = this;
}

Wire::~Wire() {
    current = nullptr;
}

Port& Wire::plug(const std::string& path, const orvex::sim::DeviceSetup& setup) {
    auto port = std::make_shared<Port>(tracks_[path], setup);
    plugged_[path] = port;
    return *port;
}

void Wire::unplug(const std::string& path) {
    const auto found = plugged_.find(path);
    found->second->end();
    plugged_.erase(found);
}

int Wire::open(const std::string& path) {
    Track& track = tracks_[path];
    const auto found = plugged_.find(path);
    if (found == plugged_.end() || track.fails(Event::Kind::openRefused)) {
        track.events.push_back({Event::Kind::openRefused});
        return failWith(ENOENT);
    }
    const int descriptor = openNothing();
    if (descriptor >= 0) {
        found->second->opened();
        open_[descriptor] = found->second;
    }
    return descriptor;
}

Port* Wire::at(int descriptor) {
    const auto found = open_.find(descriptor);
    return found != open_.end() ? found->second.get() : nullptr;
}

void Wire::closed(int descriptor) {
    const auto found = open_.find(descriptor);
    if (found != open_.end()) {
        found->second->close();
        open_.erase(found);
    }
}

Wire* currentWire() noexcept {
    return current;
}

}  // namespace orvex_soak
