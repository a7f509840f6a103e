#include <CLI/App.hpp>

#include "tools/orvexctl/lamp_change.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

class Lamp final : public LightVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_option("state", state_, "on or off")
            ->type_name("on|off")
            ->required()
            ->check(CLI::IsMember({"on", "off"}));
    }

    void prepare(Light& light) override { requireCommand(light, "TurnLampOn", "lamp"); }

    void perform(Light& light, Report& report) override {
        const bool on = state_ == "on";
        switchLamp(light, on ? "TurnLampOn" : "TurnLampOff", on ? "Lamp on." : "Lamp off.", report);
    }

  private:
    std::string state_;
};

}  // namespace

std::unique_ptr<LightVerb> makeLamp() {
    return std::make_unique<Lamp>();
}

}  // namespace orvex::tools
