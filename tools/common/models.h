/// @file
/// The library's models as the tools name them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "device/models.h"

namespace orvex::tools {

/// All models in the order of their numbers.
[[nodiscard]] std::vector<OrvexType> allModels();

/// The model of a name, upper and lower case alike; nothing when there is none.
[[nodiscard]] std::optional<OrvexType> modelNamed(std::string_view name);

/// A model's name.
[[nodiscard]] const std::string& modelName(OrvexType model);

/// "There is no model "Tamer"; did you mean Tamar?", or a list of all models.
[[nodiscard]] std::string unknownModelText(std::string_view name);

/// The commands of a model. @param model one of allModels()
[[nodiscard]] CommandTable commandsOfModel(OrvexType model);

/// Whether a model speaks the lamps' commands.
[[nodiscard]] bool speaksLampCommands(OrvexType model);

/// Whether a scan finds devices of a model.
[[nodiscard]] bool isDiscovered(OrvexType model);

}  // namespace orvex::tools
