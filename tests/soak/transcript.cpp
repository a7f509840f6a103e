#include "tests/soak/transcript.h"

namespace orvex_soak {

namespace {

const char* nameOf(Event::Kind kind) {
    switch (kind) {
        case Event::Kind::opened:
            return "open";
        case Event::Kind::openRefused:
            return "open (refused)";
        case Event::Kind::settingsRefused:
            return "settings (refused)";
        case Event::Kind::purged:
            return "purge";
        case Event::Kind::purgeRefused:
            return "purge (refused)";
        case Event::Kind::sent:
            return "request";
        case Event::Kind::sendRefused:
            return "request (refused)";
        case Event::Kind::sendCut:
            return "request (cut)";
        case Event::Kind::closed:
            return "close";
        case Event::Kind::closedUnrestored:
            return "close without the settings put back";
    }
    return "?";
}

std::string printable(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes.substr(0, 80)) {
        text += byte == '\r' ? std::string("\\r") : std::string(1, byte);
    }
    return bytes.size() > 80 ? text + "..." : text;
}

}  // namespace

std::string textOf(const Event& event) {
    std::string text = nameOf(event.kind);
    if (!event.request.empty()) {
        text += " \"" + printable(event.request) + "\"";
    }
    if (event.kind == Event::Kind::sent) {
        text += " answered \"" + printable(event.reply) + "\"";
    }
    return text;
}

const Event& Transcript::take(const std::string& awaited) {
    if (next_ == events_.size()) {
        throw Mismatch("the port saw nothing more, but must see: " + awaited);
    }
    return events_[next_++];
}

bool Transcript::nextIs(Event::Kind kind) const {
    return next_ < events_.size() && events_[next_].kind == kind;
}

void Transcript::expect(Event::Kind kind) {
    const Event& event = take(nameOf(kind));
    if (event.kind != kind) {
        throw Mismatch("the port saw: " + textOf(event) + ", but must see: " + nameOf(kind));
    }
}

void Transcript::expectEnd() const {
    if (next_ != events_.size()) {
        throw Mismatch("the port saw: " + textOf(events_[next_]) + ", but must see nothing more");
    }
}

}  // namespace orvex_soak
