/// @file
/// A model's commands, for people.
#pragma once

#include <string>

#include "tools/common/models.h"
#include "tools/orvexctl/report.h"

namespace orvex::tools {

/// Lists a model's commands with the request that each sends.
void reportCommands(OrvexType model, Report& report);

/// A request without its carriage return.
[[nodiscard]] std::string requestText(const std::string& request);

/// @throws Failure that suggests the nearest names unless the model has the command
void requireKnownCommand(OrvexType model, const std::string& name);

}  // namespace orvex::tools
