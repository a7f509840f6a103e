// The devices' side: they come, go and fail.
#include "tests/soak/rig.h"

#include <utility>

#include "tests/soak/refusal.h"

namespace orvex_soak {

using orvex::sim::DeviceSetup;
using orvex::sim::Fault;
using orvex::sim::onAny;

namespace {

constexpr int kPaths = 6;

std::string pathOf(int number) {
    return "/dev/ttyACM" + std::to_string(number);
}

/// One device stays for long, the others come and go.
bool isSettled(const std::string& path) {
    return path == pathOf(0);
}

}  // namespace

void Rig::step() {
    using Action = void (Rig::*)();
    static const std::vector<std::pair<std::size_t, Action>> actions = {
        {2, &Rig::plugIn},
        {1, &Rig::unplugOne},
        {3, &Rig::scan},
        {1, &Rig::scanWrongly},
        {3, &Rig::openAny},
        {7, &Rig::open},
        {7, &Rig::close},
        {40, &Rig::execute},
        {22, &Rig::setRecord},
        {8, &Rig::switchLight},
        {2, &Rig::askInfo},
        {2, &Rig::useWrongHandle},
        {1, &Rig::useWrongArguments},
        {1, &Rig::changeLog},
    };
    ++figures_.steps;
    faulty_ = false;
    action_.clear();
    std::size_t chosen = random_.below(100);
    for (const auto& [weight, action] : actions) {
        if (chosen < weight) {
            (this->*action)();
            break;
        }
        chosen -= weight;
    }
    checkAll();
    clearFaults();
    unplugEnded();
}

void Rig::empty() {
    action_ = "unplug everything";
    while (!sockets_.empty()) {
        wire_.unplug(sockets_.begin()->first);
        sockets_.erase(sockets_.begin());
    }
    scan();
    requireThat(devices_.empty(), "devices are left");
    requireThat(wire_.openCount() == 0, "ports are left open");
    slots_ = {};
    gone_.clear();
    gone_.shrink_to_fit();
    for (auto& [path, track] : wire_.tracks()) {
        std::vector<Event>().swap(track.events);
    }
}

std::size_t Rig::exchanges() const {
    std::size_t count = 0;
    for (const auto& [path, track] : wire_.tracks()) {
        count += track.requests;
    }
    return count;
}

void Rig::plugIn() {
    const std::string path = pathOf(random_.between(0, kPaths - 1));
    if (sockets_.count(path) != 0) {
        return;
    }
    const OrvexType model = modelFor(path);
    action_ = "plug model " + std::to_string(model) + " in at " + path;
    wire_.plug(path, randomSetup(model));
    sockets_[path] = {model <= ORVEX_TYPE_ROWAN};
    ++figures_.plugged;
    const bool isFound = model == ORVEX_TYPE_CEDAR || model == ORVEX_TYPE_TAMAR;
    if (!isFound && devices_.count(path) == 0) {
        adopt(path, model);
    }
}

/// Mostly what the library takes the device at that path for, if it has not noticed a change.
OrvexType Rig::modelFor(const Path& path) {
    const auto known = devices_.find(path);
    if (known != devices_.end() && random_.percent(80)) {
        return known->second.type();
    }
    if (isSettled(path)) {
        return ORVEX_TYPE_TAMAR;
    }
    if (random_.percent(50)) {
        return random_.percent(70) ? ORVEX_TYPE_TAMAR : ORVEX_TYPE_CEDAR;
    }
    return static_cast<OrvexType>(random_.between(ORVEX_TYPE_ALDER, ORVEX_TYPE_WILLOW));
}

DeviceSetup Rig::randomSetup(OrvexType model) {
    DeviceSetup setup;
    setup.model = model;
    setup.minimum = random_.between(0, 20) * 5;
    setup.serialText = random_.oneOf<std::string>({"SN-0042", "4711", "A-B-17", "none"});
    const int positions = random_.percent(3) ? random_.between(17, 18) : random_.between(1, 16);
    for (int k = 0; k < positions && random_.percent(99); ++k) {
        setup.wavelengths.push_back(random_.percent(20) ? ORVEX_EMPTY_POSITION
                                                        : random_.between(300, 800));
        setup.names.push_back(random_.percent(50) ? "LED" : "a name that is too long");
        setup.intensities.push_back(random_.between(0, 100) * 10);
        setup.temperatures.push_back(random_.between(15, 90));
        if (random_.percent(20)) {
            setup.ledsOn.push_back(k + 1);
        }
    }
    if (setup.wavelengths.empty() || !orvex::sim::isLedModel(model)) {
        setup.ledsOn.clear();
    }
    return setup;
}

void Rig::unplugOne() {
    if (sockets_.empty()) {
        return;
    }
    const auto offset = static_cast<std::ptrdiff_t>(random_.below(sockets_.size()));
    const auto socket = std::next(sockets_.begin(), offset);
    if (isSettled(socket->first) && random_.percent(99)) {
        return;
    }
    action_ = "unplug " + socket->first;
    wire_.unplug(socket->first);
    sockets_.erase(socket);
    ++figures_.unplugged;
}

/// A device that has hung up is no longer there.
void Rig::unplugEnded() {
    for (auto socket = sockets_.begin(); socket != sockets_.end();) {
        if (wire_.plugged().at(socket->first)->hasEnded()) {
            wire_.unplug(socket->first);
            socket = sockets_.erase(socket);
            ++figures_.unplugged;
        } else {
            ++socket;
        }
    }
}

void Rig::faultFor(const Path& path, bool opening) {
    if (!random_.percent(15)) {
        return;
    }
    faulty_ = true;
    ++figures_.faults;
    Track& track = wire_.tracks()[path];
    const auto nth = static_cast<unsigned>(random_.between(1, opening ? 12 : 3));
    const auto plugged = wire_.plugged().find(path);
    switch (random_.below(8)) {
        case 0:
            track.failure =
                CallFailure{opening && random_.percent(50) ? Event::Kind::settingsRefused
                                                           : Event::Kind::openRefused,
                            1};
            break;
        case 1:
            track.failure = CallFailure{Event::Kind::purgeRefused, nth};
            break;
        case 2:
            track.failure = CallFailure{
                random_.percent(50) ? Event::Kind::sendRefused : Event::Kind::sendCut, nth};
            break;
        case 3:
            track.nextReplyIsLate = true;
            break;
        default:
            if (plugged != wire_.plugged().end()) {
                deviceFaultFor(*plugged->second, !isSettled(path));
            }
            break;
    }
    action_ += " (with a fault)";
}

void Rig::deviceFaultFor(Port& port, bool mayHangUp) {
    std::vector<Fault> faults = {
        orvex::sim::silence(),
        orvex::sim::errorReply(),
        orvex::sim::unterminated(),
        orvex::sim::endless(random_.percent(50) ? 1024 : 1500, 'x'),
        orvex::sim::scripted("5\rrest\r"),
        orvex::sim::scripted("7,x,,19,12x,0,3\r"),
        orvex::sim::scripted("\r"),
        orvex::sim::scripted("E\r"),
        orvex::sim::scripted(std::string(1023, ',') + "\r"),
    };
    if (mayHangUp) {
        faults.push_back(orvex::sim::hangUp());
    }
    const auto nth = static_cast<unsigned>(random_.between(1, 12));
    port.device().faults().add(onAny().nth(random_.percent(50) ? 1 : nth), random_.oneOf(faults));
}

void Rig::clearFaults() {
    for (const auto& [path, port] : wire_.plugged()) {
        port->device().faults().clear();
    }
    for (auto& [path, track] : wire_.tracks()) {
        track.beginStep();
    }
}

}  // namespace orvex_soak
