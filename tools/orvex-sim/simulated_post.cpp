#include <utility>

#include "tools/orvex-sim/post.h"

namespace orvex::tools {

SimulatedPost::SimulatedPost(const PostSetup& setup)
    : setup_(setup),
      device_(setup.plan.setup, observerFor(setup.trace, setup.number),
              [bell = setup.bell] { bell->ring(); }) {
    // A device that serves for days must not remember all it was asked.
    device_.conversation().record().keep(false);
    if (setup_.plan.adjust) {
        device_.change(setup_.plan.adjust);
    }
    if (!setup_.plan.pluggedIn) {
        device_.hangUp();
    }
}

void SimulatedPost::show(std::unique_ptr<Place> place) {
    place_ = std::move(place);
    if (setup_.trace != nullptr) {
        setup_.trace->introduce(setup_.number, model(), path());
    }
    isPlugged_ = setup_.plan.pluggedIn;
    if (isPlugged_) {
        place_->appear();
    }
}

void SimulatedPost::plug() {
    if (!isPlugged_) {
        device_.plugIn();
        place_->appear();
        notePlugging(true);
    }
}

void SimulatedPost::unplug() {
    if (isPlugged_) {
        place_->vanish();
        device_.hangUp();
        notePlugging(false);
    }
}

/// A fault has pulled the device out.
std::optional<sim::Clock::time_point> SimulatedPost::attend() {
    if (isPlugged_ && !device_.isPluggedIn()) {
        place_->vanish();
        notePlugging(false);
    }
    return std::nullopt;
}

void SimulatedPost::notePlugging(bool pluggedIn) {
    isPlugged_ = pluggedIn;
    if (setup_.trace != nullptr) {
        setup_.trace->addPlugging(setup_.number, pluggedIn);
    }
}

}  // namespace orvex::tools
