/// @file
/// Scripts: verbs with pauses and repetitions.
#pragma once

#include <chrono>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

/// A verb, a pause or a repetition of further steps.
struct Step {
    int line = 0;
    std::string text;
    std::unique_ptr<LightVerb> verb;    ///< Given: a verb.
    std::chrono::milliseconds wait{0};  ///< Otherwise: a pause, or
    unsigned repetitions = 0;           ///< above 0, a repetition
    std::vector<Step> body;             ///< of these.
};

/// Reads a script and checks it as far as that goes without a light.
/// @param name what messages call the script
/// @throws Failure with the line's number
[[nodiscard]] std::vector<Step> parseScript(std::istream& text, const std::string& name);

/// Checks it against the light. @throws Failure with the line's number
void prepareScript(const std::vector<Step>& steps, Light& light, const std::string& name);

/// How many verbs and pauses it carries out.
[[nodiscard]] std::size_t countSteps(const std::vector<Step>& steps);

/// A failure with the place in the script in front.
[[nodiscard]] Failure inLine(const Failure& failure, const std::string& name, int line);

}  // namespace orvex::tools
