#include "tools/orvexctl/command_line.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>

#include "tools/common/nearest.h"
#include "tools/orvexctl/choose_light.h"
#include "tools/orvexctl/driver_log.h"
#include "tools/orvexctl/perform.h"
#include "tools/orvexctl/program_verb.h"
#include "tools/orvexctl/timeout.h"
#include "tools/orvexctl/verb.h"

namespace orvex::tools {

namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done, 1 other failure, 2 usage, 3 no device, 4 no permission, 5 busy,\n"
    "6 device error, 7 no answer, 8 a file could not be read or written, 130 interrupted.\n"
    "orvexctl SUBCOMMAND --help shows examples.";

constexpr int kHelpColumn = 34;

std::string footerOf(const std::string& examples) {
    std::string text = "Examples:\n";
    std::istringstream lines(examples);
    for (std::string line; std::getline(lines, line);) {
        text += "  orvexctl " + line + "\n";
    }
    return text;
}

/// The program's own parser, with a place for what each sub-command does.
class CommandLine {
  public:
    CommandLine() {
        parser_.name("orvexctl");
        parser_.require_subcommand(1);
        parser_.set_version_flag("--version", "orvexctl " ORVEXCTL_VERSION);
        parser_.footer(kExitCodes);
        parser_.get_formatter()->column_width(kHelpColumn);
        addCommonOptions(parser_, options_);
        for (const VerbDescription& description : lightVerbs()) {
            if (std::string(description.name) != "commands") {
                add(description);
            }
        }
        for (const ProgramVerbDescription& description : programVerbs()) {
            add(description);
        }
    }

    ExitCode run(int argc, char** argv) {
        parser_.parse(argc, argv);
        startDriverLog(options_);
        if (options_.timeout > 0) {
            endAfter(options_.timeout);
        }
        return actions_.at(parser_.get_subcommands().front())();
    }

    ExitCode explain(const CLI::ParseError& error) {
        const int code = parser_.exit(error, std::cout, std::cerr);
        if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr ||
            dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
            suggestVerb();
        }
        return code == 0 ? ExitCode::ok : ExitCode::usage;
    }

  private:
    CLI::App* configured(CLI::App* command, const char* examples) {
        command->footer(footerOf(examples));
        addCommonOptions(*command, options_);
        return command;
    }

    void add(const VerbDescription& description) {
        AddedVerb added = addVerb(parser_, description);
        const std::shared_ptr<LightVerb> verb = std::move(added.verb);
        actions_[configured(added.command, description.examples)] = [this, verb] {
            performAlone(*verb, options_);
            return ExitCode::ok;
        };
    }

    void add(const ProgramVerbDescription& description) {
        CLI::App* command = parser_.add_subcommand(description.name, description.summary);
        const std::shared_ptr<ProgramVerb> verb = description.make();
        verb->configure(*command);
        actions_[configured(command, description.examples)] = [this, verb] {
            return verb->run(options_);
        };
    }

    void suggestVerb() const {
        const std::vector<std::string> rest = parser_.remaining();
        if (rest.empty() || !parser_.get_subcommands().empty()) {
            return;
        }
        std::vector<std::string> names;
        for (const auto& [command, action] : actions_) {
            names.push_back(command->get_name());
        }
        std::cerr << "  there is no sub-command \"" << rest.front() << "\""
                  << suggestion(rest.front(), names) << '\n';
    }

    CommonOptions options_;
    CLI::App parser_{"Controls Orvex light sources from the terminal."};
    std::map<const CLI::App*, std::function<ExitCode()>> actions_;
};

}  // namespace

ExitCode report(const Failure& failure) {
    std::cout.flush();
    std::cerr << "orvexctl: " << failure.what() << '\n';
    if (!failure.advice().empty()) {
        std::cerr << "  try: " << failure.advice() << '\n';
    }
    return failure.code();
}

ExitCode runCommandLine(int argc, char** argv) {
    CommandLine commandLine;
    try {
        return commandLine.run(argc, argv);
    } catch (const CLI::ParseError& error) {
        return commandLine.explain(error);
    } catch (const Failure& failure) {
        return report(failure);
    } catch (const std::exception& error) {
        return report(Failure(ExitCode::failure, error.what()));
    }
}

}  // namespace orvex::tools
