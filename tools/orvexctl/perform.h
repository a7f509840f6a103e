/// @file
/// Carrying out verbs on lights.
#pragma once

#include "tools/orvexctl/light.h"
#include "tools/orvexctl/options.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

/// Carries a verb out on a light that is open and stays so.
void perform(LightVerb& verb, Light& light, bool asJson);

/// Opens the chosen light, carries the verb out and closes the light.
void performAlone(LightVerb& verb, const CommonOptions& options);

/// Tells what closing the light is going to change.
void sayWhatClosingDoes(const Light& light, const CommonOptions& options, Report& report);

}  // namespace orvex::tools
