#include "tools/orvexctl/switch_verb.h"

#include <CLI/App.hpp>

#include "tools/orvexctl/assignment.h"
#include "tools/orvexctl/channel_change.h"

namespace orvex::tools {

void SwitchVerb::configure(CLI::App& command) {
    command
        .add_option("channels", texts_, "1 or 1,3 or 2-4; all is the default; a lamp has channel 1")
        ->type_name("CHANNELS|all");
}

void SwitchVerb::check() {
    positions_ = parsePositions(texts_);
}

void SwitchVerb::prepare(Light& light) {
    for (const int position : positions_) {
        requireUsablePosition(light, position, on_ ? "on" : "off");
    }
    if (positions_.empty()) {
        positions_ = usablePositions(light);
    }
}

void SwitchVerb::perform(Light& light, Report& report) {
    std::vector<ChannelChange> changes;
    for (const int position : positions_) {
        changes.push_back({position, {}, on_});
    }
    applyChanges(light, changes, report);
}

}  // namespace orvex::tools
