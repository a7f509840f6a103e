#include "tools/common/models.h"

#include <algorithm>

#include "tools/common/nearest.h"

namespace orvex::tools {

namespace {

/// The table of a multi-LED model; null: the model speaks the lamps' commands.
const CommandTable* ledTableOf(OrvexType model) {
    switch (model) {
        case ORVEX_TYPE_SPRUCE:
            return &gl_cmd_spruce;
        case ORVEX_TYPE_TAMAR:
            return &gl_cmd_tamar;
        case ORVEX_TYPE_WILLOW:
            return &gl_cmd_willow;
        default:
            return nullptr;
    }
}

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
    if (const CommandTable* table = ledTableOf(model); table != nullptr) {
        return *table;
    }
    CommandTable commands = gl_cmd_lamp;
    if (model != ORVEX_TYPE_ALDER) {
        commands.insert(gl_cmd_lamp_ext.begin(), gl_cmd_lamp_ext.end());
    }
    return commands;
}

bool speaksLampCommands(OrvexType model) {
    return ledTableOf(model) == nullptr;
}

bool isDiscovered(OrvexType model) {
    return std::any_of(gl_usb_pid_types.begin(), gl_usb_pid_types.end(),
                       [model](const auto& product) { return product.second == model; });
}

}  // namespace orvex::tools
