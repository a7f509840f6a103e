#include "tools/orvexctl/command_names.h"

#include "tools/common/nearest.h"
#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/table.h"

namespace orvex::tools {

std::string requestText(const std::string& request) {
    return request.substr(0, request.find('\r'));
}

void reportCommands(OrvexType model, Report& report) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    Table table({{"COMMAND"}, {"REQUEST"}});
    for (const auto& [name, request] : commandsOfModel(model)) {
        table.add({name, requestText(request)});
        list.push_back({{"command", name}, {"request", requestText(request)}});
    }
    report.give({{"model", modelName(model)}, {"commands", list}});
    if (!report.asJson()) {
        table.print(report.out());
    }
}

void requireKnownCommand(OrvexType model, const std::string& name) {
    std::vector<std::string> known;
    for (const auto& [one, request] : commandsOfModel(model)) {
        if (one == name) {
            return;
        }
        known.push_back(one);
    }
    throw Failure(ExitCode::usage,
                  "a " + modelName(model) + " has no command \"" + name + "\"" +
                      suggestion(name, known) + " (ORVEX_ERR_NOT_SUPPORTED)",
                  "orvexctl commands --model " + modelName(model) + " lists them all");
}

}  // namespace orvex::tools
