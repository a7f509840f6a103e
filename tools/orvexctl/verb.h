/// @file
/// The verbs that work on an opened light: sub-commands, shell commands and steps of scripts alike.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/orvexctl/light.h"
#include "tools/orvexctl/report.h"

namespace CLI {
class App;
}

namespace orvex::tools {

/// One use of a verb, with its arguments.
class LightVerb {
  public:
    LightVerb() = default;
    LightVerb(const LightVerb&) = delete;
    LightVerb& operator=(const LightVerb&) = delete;
    virtual ~LightVerb() = default;

    /// Tells the parser which arguments there are.
    virtual void configure(CLI::App& command) = 0;
    /// Checks the arguments as far as that goes without a light. @throws Failure
    virtual void check() {}
    /// Checks them against the light before anything is changed. @throws Failure
    virtual void prepare(Light& light) { static_cast<void>(light); }
    virtual void perform(Light& light, Report& report) = 0;
};

/// What there is to know about a verb.
struct VerbDescription {
    const char* name;
    const char* summary;
    const char* examples;  ///< Lines "command  what it does".
    std::unique_ptr<LightVerb> (*make)();
};

/// All of them, in the order of the help.
[[nodiscard]] const std::vector<VerbDescription>& lightVerbs();

/// Adds a verb to a parser and gives its arguments a place to go.
/// @return the sub-command and the verb that it fills
struct AddedVerb {
    CLI::App* command;
    std::unique_ptr<LightVerb> verb;
};
[[nodiscard]] AddedVerb addVerb(CLI::App& parser, const VerbDescription& description);

/// The verbs themselves.
[[nodiscard]] std::unique_ptr<LightVerb> makeInfo();
[[nodiscard]] std::unique_ptr<LightVerb> makeSet();
[[nodiscard]] std::unique_ptr<LightVerb> makeOn();
[[nodiscard]] std::unique_ptr<LightVerb> makeOff();
[[nodiscard]] std::unique_ptr<LightVerb> makeLamp();
[[nodiscard]] std::unique_ptr<LightVerb> makeShutter();
[[nodiscard]] std::unique_ptr<LightVerb> makeExec();
[[nodiscard]] std::unique_ptr<LightVerb> makeCommands();

}  // namespace orvex::tools
