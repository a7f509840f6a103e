#include <iostream>

#include "tools/orvexctl/choose_light.h"
#include "tools/orvexctl/command_names.h"
#include "tools/orvexctl/program_verb.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

class Commands final : public LightVerb {
  public:
    void configure(CLI::App& command) override { static_cast<void>(command); }
    void perform(Light& light, Report& report) override { reportCommands(light.model(), report); }
};

class CommandsOfModel final : public ProgramVerb {
  public:
    ExitCode run(const CommonOptions& options) override {
        Report report(std::cout, options.json);
        reportCommands(chosenModel(options), report);
        report.finish();
        return ExitCode::ok;
    }
};

}  // namespace

std::unique_ptr<LightVerb> makeCommands() {
    return std::make_unique<Commands>();
}

std::unique_ptr<ProgramVerb> makeCommandsOfModel() {
    return std::make_unique<CommandsOfModel>();
}

}  // namespace orvex::tools
