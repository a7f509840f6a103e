#include <CLI/App.hpp>
#include <algorithm>

#include "tools/orvexctl/assignment.h"
#include "tools/orvexctl/channel_change.h"
#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

class Set final : public LightVerb {
  public:
    void configure(CLI::App& command) override {
        command
            .add_option("assignments", texts_,
                        "CHANNEL=SETTING[,SETTING] each; a setting is on, off or a percentage")
            ->type_name("CHANNEL=SETTING")
            ->required();
    }

    void check() override {
        changes_.clear();
        for (const std::string& text : texts_) {
            changes_.push_back(parseAssignment(text));
            requireFirst(changes_.back(), text);
        }
    }

    void prepare(Light& light) override {
        for (std::size_t k = 0; k < changes_.size(); ++k) {
            requireUsablePosition(light, changes_[k].position,
                                  "\"" + texts_[k] + "\", character 1");
        }
    }

    void perform(Light& light, Report& report) override { applyChanges(light, changes_, report); }

  private:
    void requireFirst(const ChannelChange& added, const std::string& text) const {
        const auto same = std::count_if(
            changes_.begin(), changes_.end(),
            [&](const ChannelChange& change) { return change.position == added.position; });
        if (same > 1) {
            throw Failure(
                ExitCode::usage,
                "\"" + text + "\", character 1: channel " + std::to_string(added.position) +
                    " is set already",
                "put its settings together: " + std::to_string(added.position) + "=on,45%");
        }
    }

    std::vector<std::string> texts_;
    std::vector<ChannelChange> changes_;
};

}  // namespace

std::unique_ptr<LightVerb> makeSet() {
    return std::make_unique<Set>();
}

}  // namespace orvex::tools
