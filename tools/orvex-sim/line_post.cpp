#include "tools/orvex-sim/line_post.h"

#include <utility>

#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

namespace {

constexpr auto kRetryPause = std::chrono::milliseconds(200);

}  // namespace

LinePost::LinePost(const PostSetup& setup, std::string path)
    : setup_(setup), path_(std::move(path)), conversation_(setup.plan.setup) {
    conversation_.record().keep(false);
    if (setup_.plan.adjust) {
        conversation_.change(setup_.plan.adjust);
    }
    if (setup_.trace != nullptr) {
        setup_.trace->introduce(setup_.number, model(), path_);
    }
    isPlugged_ = setup_.plan.pluggedIn;
    open();
    if (!isPlugged_) {
        close();
    }
}

LinePost::~LinePost() {
    close();
}

void LinePost::plug() {
    if (!isPlugged_) {
        note(true);
        setup_.bell->ring();
    }
}

void LinePost::unplug() {
    if (isPlugged_) {
        note(false);
        close();
    }
}

/// Opens the line again if it has ended.
std::optional<sim::Clock::time_point> LinePost::attend() {
    if (ended_.exchange(false)) {
        close();
    }
    if (!isPlugged_ || server_ != nullptr) {
        return std::nullopt;
    }
    try {
        open();
        return std::nullopt;
    } catch (const Failure&) {
        return sim::Clock::now() + kRetryPause;
    }
}

void LinePost::open() {
    line_ = std::make_unique<TerminalLine>(path_);
    const auto lineEnds = [this] {
        ended_ = true;
        setup_.bell->ring();
    };
    server_ = std::make_unique<sim::LineServer>(line_->descriptor(), conversation_, lineEnds,
                                                observerFor(setup_.trace, setup_.number));
}

void LinePost::close() {
    server_.reset();
    line_.reset();
    conversation_.forgetPartialRequest();
    ended_ = false;
}

void LinePost::note(bool pluggedIn) {
    isPlugged_ = pluggedIn;
    if (setup_.trace != nullptr) {
        setup_.trace->addPlugging(setup_.number, pluggedIn);
    }
}

}  // namespace orvex::tools
