/// @file
/// From the options to an opened light.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tools/orvexctl/attached.h"
#include "tools/orvexctl/light.h"
#include "tools/orvexctl/options.h"

namespace orvex::tools {

/// The one attached light that the option --device means.
/// @throws Failure when there is none, or more than one
[[nodiscard]] AttachedLight chooseAttached(const std::string& device);

/// The model of the option --model. @throws Failure for an unknown one
[[nodiscard]] OrvexType requireModel(const std::string& name);

/// The model of the light that the options mean; nothing is opened.
[[nodiscard]] OrvexType chosenModel(const CommonOptions& options);

/// Opens the light that the options mean.
[[nodiscard]] std::unique_ptr<Light> openChosenLight(const CommonOptions& options);

/// Opens the light, does something with it and, unless told otherwise, closes it, also after a
/// failure.
void withLight(const CommonOptions& options, const std::function<void(Light&)>& action);

}  // namespace orvex::tools
