#include <CLI/App.hpp>

#include "tools/orvexctl/lamp_change.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

class Shutter final : public LightVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_option("state", state_, "open or close")
            ->type_name("open|close")
            ->required()
            ->check(CLI::IsMember({"open", "close"}));
    }

    void prepare(Light& light) override { requireCommand(light, "OpenShutter", "shutter"); }

    void perform(Light& light, Report& report) override {
        const bool open = state_ == "open";
        switchLamp(light, open ? "OpenShutter" : "CloseShutter",
                   open ? "Shutter open." : "Shutter closed.", report);
    }

  private:
    std::string state_;
};

}  // namespace

std::unique_ptr<LightVerb> makeShutter() {
    return std::make_unique<Shutter>();
}

}  // namespace orvex::tools
