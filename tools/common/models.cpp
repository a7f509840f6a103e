#include "tools/common/models.h"

#include <algorithm>

#include "device/model_table.h"
#include "tools/common/nearest.h"

namespace orvex::tools {

namespace {

std::vector<std::string> allModelNames() {
    std::vector<std::string> names;
    for (const OrvexType model : allModels()) {
        names.push_back(modelName(model));
    }
    return names;
}

}  // namespace

std::vector<OrvexType> allModels() {
    std::vector<OrvexType> models;
    for (const auto& [model, name] : gl_type_names) {
        if (model != ORVEX_TYPE_UNDEFINED) {
            models.push_back(model);
        }
    }
    std::sort(models.begin(), models.end());
    return models;
}

std::optional<OrvexType> modelNamed(std::string_view name) {
    for (const OrvexType model : allModels()) {
        if (lowerCase(modelName(model)) == lowerCase(name)) {
            return model;
        }
    }
    return std::nullopt;
}

const std::string& modelName(OrvexType model) {
    const auto known = gl_type_names.find(model);
    return known != gl_type_names.end() ? known->second : gl_type_names.at(ORVEX_TYPE_UNDEFINED);
}

std::string unknownModelText(std::string_view name) {
    return "there is no model \"" + std::string(name) + "\"" + suggestion(name, allModelNames());
}

CommandTable commandsOfModel(OrvexType model) {
    const Model* const known = findModel(model);
    return known != nullptr ? allCommandsOf(*known) : CommandTable();
}

bool speaksLampCommands(OrvexType model) {
    const Model* const known = findModel(model);
    return known != nullptr && known->commands == &gl_cmd_lamp;
}

bool isDiscovered(OrvexType model) {
    return std::any_of(gl_usb_pid_types.begin(), gl_usb_pid_types.end(),
                       [model](const auto& product) { return product.second == model; });
}

}  // namespace orvex::tools
