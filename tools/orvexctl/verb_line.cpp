#include "tools/orvexctl/verb_line.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include "tools/common/nearest.h"
#include "tools/orvexctl/failure.h"

namespace orvex::tools {

VerbLine::VerbLine() {
    parser_.require_subcommand(1);
    parser_.set_help_flag();
    parser_.footer("VERB --help explains one.");
    for (const VerbDescription& description : lightVerbs()) {
        AddedVerb added = addVerb(parser_, description);
        added.command->set_help_flag("--help", "Show this help");
        verbs_[description.name] = std::move(added.verb);
    }
}

void VerbLine::parse(const std::string& line) {
    try {
        parser_.parse(line);
    } catch (const CLI::CallForHelp&) {
        throw HelpWanted(parser_.get_subcommands().front()->help());
    } catch (const CLI::ParseError& error) {
        failUnknown(error.what());
    }
    const auto verb = verbs_.find(name());
    if (verb != verbs_.end()) {
        verb->second->check();
    }
}

std::unique_ptr<LightVerb> VerbLine::takeVerb() {
    const auto verb = verbs_.find(name());
    return verb != verbs_.end() ? std::move(verb->second) : nullptr;
}

std::string VerbLine::name() const {
    return parser_.get_subcommands().front()->get_name();
}

void VerbLine::failUnknown(const std::string& problem) const {
    const std::vector<std::string> rest = parser_.remaining();
    if (rest.empty() || !parser_.get_subcommands().empty()) {
        throw Failure(ExitCode::usage, problem);
    }
    std::vector<std::string> known;
    for (const CLI::App* command : parser_.get_subcommands({})) {
        known.push_back(command->get_name());
    }
    throw Failure(ExitCode::usage,
                  "there is no verb \"" + rest.front() + "\"" + suggestion(rest.front(), known));
}

}  // namespace orvex::tools
