#include <CLI/App.hpp>

#include "tools/orvexctl/command_names.h"
#include "tools/orvexctl/replies.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

class Exec final : public LightVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_option("command", name_, "A command of the model")
            ->type_name("COMMAND")
            ->required();
        command.add_option("value", value_, "Its value, sent as it stands")->type_name("VALUE");
    }

    void prepare(Light& light) override { requireKnownCommand(light.model(), name_); }

    void perform(Light& light, Report& report) override {
        const std::string reply = printable(light.command(name_, value_));
        report.give({{"command", name_},
                     {"request", requestText(light.commands().at(name_)) + value_},
                     {"reply", reply}});
        report.say(reply);
    }

  private:
    std::string name_;
    std::string value_;
};

}  // namespace

std::unique_ptr<LightVerb> makeExec() {
    return std::make_unique<Exec>();
}

}  // namespace orvex::tools
