/// @file
/// The sub-commands that are more than a verb on one opened light.
#pragma once

#include <memory>
#include <vector>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/options.h"

namespace CLI {
class App;
}

namespace orvex::tools {

class ProgramVerb {
  public:
    ProgramVerb() = default;
    ProgramVerb(const ProgramVerb&) = delete;
    ProgramVerb& operator=(const ProgramVerb&) = delete;
    virtual ~ProgramVerb() = default;

    /// Tells the parser which arguments there are.
    virtual void configure(CLI::App& command) { static_cast<void>(command); }
    virtual ExitCode run(const CommonOptions& options) = 0;
};

struct ProgramVerbDescription {
    const char* name;
    const char* summary;
    const char* examples;
    std::unique_ptr<ProgramVerb> (*make)();
};

[[nodiscard]] const std::vector<ProgramVerbDescription>& programVerbs();

[[nodiscard]] std::unique_ptr<ProgramVerb> makeList();
[[nodiscard]] std::unique_ptr<ProgramVerb> makeCommandsOfModel();
[[nodiscard]] std::unique_ptr<ProgramVerb> makeWatch();
[[nodiscard]] std::unique_ptr<ProgramVerb> makeShell();
[[nodiscard]] std::unique_ptr<ProgramVerb> makeDoctor();
[[nodiscard]] std::unique_ptr<ProgramVerb> makeRun();

}  // namespace orvex::tools
