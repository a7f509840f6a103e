// orvex-sim: simulated light sources for any program.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "tools/common/nearest.h"
#include "tools/orvex-sim/commands.h"
#include "tools/orvex-sim/failure.h"

namespace {

using orvex::tools::Action;
using orvex::tools::alternatives;
using orvex::tools::suggestion;

constexpr const char* kExamples = R"(Examples:
  orvex-sim run --device Tamar -- ./my_program
  orvex-sim serve --device Willow --link /tmp/ttyWillow
  orvex-sim replay light.trace -- ./my_program
  orvex-sim models Tamar

Exit codes: 0 done, 2 bad input, 3 the system refused something, 4 not written, 5 departed from the
trace, 126 and 127 COMMAND cannot be executed or found; otherwise COMMAND's own.
'orvex-sim SUB-COMMAND --help' tells more.)";

int complain(const std::string& text) {
    std::cerr << "orvex-sim: " << text << "\n";
    return orvex::tools::kSystemRefused;
}

int complainOfUsage(const CLI::App& app, const CLI::ParseError& error) {
    std::string command = "orvex-sim";
    for (const CLI::App* chosen : app.get_subcommands()) {
        command += " " + chosen->get_name();
    }
    complain(std::string(error.what()) + "\nSee '" + command + " --help'.");
    return orvex::tools::kBadInput;
}

int complainOfNoSubcommand(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    const std::vector<std::string> given = app.remaining();
    std::string problem = "a sub-command is missing; known: " + alternatives(names);
    if (!given.empty()) {
        const bool isOption = given.front().front() == '-';
        problem = std::string("there is no ") + (isOption ? "option" : "sub-command") + " \"" +
                  given.front() + "\"" + (isOption ? "" : suggestion(given.front(), names));
    }
    complain(problem + "\nSee 'orvex-sim --help'.");
    return orvex::tools::kBadInput;
}

int act(const Action& chosen) {
    const int code = chosen();
    std::cout.flush();
    if (!std::cout) {
        complain("cannot write standard output");
        return code == 0 ? orvex::tools::kNotWritten : code;
    }
    return code;
}

int runProgram(int argc, char** argv) {
    CLI::App app("Simulated Orvex light sources: run any program with them, without hardware.",
                 "orvex-sim");
    Action chosen;
    app.set_version_flag("--version", "orvex-sim " ORVEX_SIM_VERSION);
    app.footer(kExamples);
    orvex::tools::addRun(app, chosen);
    orvex::tools::addServe(app, chosen);
    orvex::tools::addReplay(app, chosen);
    orvex::tools::addModels(app, chosen);
    app.require_subcommand(0, 1);
    app.allow_extras();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return e.get_exit_code() == 0 ? app.exit(e) : complainOfUsage(app, e);
    }
    if (!chosen) {
        return complainOfNoSubcommand(app);
    }
    return act(chosen);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (const orvex::tools::Failure& e) {
        complain(e.what());
        return e.code();
    } catch (const std::exception& e) {
        return complain(e.what());
    }
}
