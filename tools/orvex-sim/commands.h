/// @file
/// The sub-commands. Each adds itself to the program and, when it is chosen, sets what is to run.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace orvex::tools {

/// What a sub-command does; returns the exit code.
using Action = std::function<int()>;

void addRun(CLI::App& app, Action& chosen);
void addServe(CLI::App& app, Action& chosen);
void addReplay(CLI::App& app, Action& chosen);
void addModels(CLI::App& app, Action& chosen);

}  // namespace orvex::tools
