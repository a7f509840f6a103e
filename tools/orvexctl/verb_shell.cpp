#include <csignal>
#include <iostream>

#include "tools/common/models.h"
#include "tools/orvexctl/choose_light.h"
#include "tools/orvexctl/command_line.h"
#include "tools/orvexctl/interrupts.h"
#include "tools/orvexctl/line_editor.h"
#include "tools/orvexctl/perform.h"
#include "tools/orvexctl/program_verb.h"
#include "tools/orvexctl/script.h"
#include "tools/orvexctl/verb_line.h"

namespace orvex::tools {

namespace {

/// What can stand behind the words before it.
std::vector<std::string> completions(const Light& light, const std::string& before) {
    const std::string verb = before.substr(0, before.find(' '));
    std::vector<std::string> words;
    if (verb.size() == before.size()) {
        for (const VerbDescription& description : lightVerbs()) {
            words.emplace_back(description.name);
        }
        words.insert(words.end(), {"help", "quit"});
    } else if (verb == "exec") {
        for (const auto& [name, request] : light.commands()) {
            words.push_back(name);
        }
    } else if (verb == "lamp") {
        words = {"on", "off"};
    } else if (verb == "shutter") {
        words = {"open", "close"};
    } else if (verb == "on" || verb == "off") {
        words = {"all"};
    }
    return words;
}

/// A session on one light.
class Session {
  public:
    Session(Light& light, bool asJson)
        : light_(light),
          asJson_(asJson),
          editor_(modelName(light.model()) + "> ",
                  [&light](const std::string& before) { return completions(light, before); }) {}

    /// @return the exit code of the line that ended it
    ExitCode run() {
        if (editor_.isInteractive()) {
            std::cout << light_.title() << "; help lists the verbs, quit ends." << std::endl;
        }
        while (!ended_) {
            const std::optional<std::string> line = editor_.next();
            ++number_;
            if (!line || endsSession()) {
                break;
            }
            const ExitCode code = carryOut(*line);
            if (code != ExitCode::ok && !editor_.isInteractive()) {
                return code;
            }
        }
        return isInterrupted() ? interruptedCode() : ExitCode::ok;
    }

  private:
    /// Ctrl-C only drops the line that is being typed.
    bool endsSession() const {
        if (interruptSignal() == SIGINT && editor_.isInteractive()) {
            forgetInterrupt();
        }
        return isInterrupted();
    }

    ExitCode carryOut(const std::string& line) {
        if (line.find_first_not_of(" \t") == std::string::npos || line.front() == '#') {
            return ExitCode::ok;
        }
        try {
            carryOutParsed(line);
            return ExitCode::ok;
        } catch (const HelpWanted& help) {
            std::cout << help.what() << std::flush;
            return ExitCode::ok;
        } catch (const Failure& failure) {
            return report(editor_.isInteractive() ? failure
                                                  : inLine(failure, "standard input", number_));
        }
    }

    void carryOutParsed(const std::string& line) {
        VerbLine parser;
        addSessionCommands(parser.parser());
        parser.parse(line);
        if (parser.name() == "help") {
            VerbLine verbs;
            addSessionCommands(verbs.parser());
            std::cout << verbs.help() << std::flush;
        } else if (const auto verb = parser.takeVerb(); verb != nullptr) {
            perform(*verb, light_, asJson_);
        } else {
            ended_ = true;
        }
    }

    static void addSessionCommands(CLI::App& parser) {
        parser.add_subcommand("help", "List the verbs");
        parser.add_subcommand("quit", "End the session");
        parser.add_subcommand("exit", "End the session")->group("");
    }

    Light& light_;
    bool asJson_;
    LineEditor editor_;
    int number_ = 0;
    bool ended_ = false;
};

class Shell final : public ProgramVerb {
  public:
    ExitCode run(const CommonOptions& options) override {
        ExitCode code = ExitCode::ok;
        catchInterrupts();
        withLight(options, [&](Light& light) { code = Session(light, options.json).run(); });
        return code;
    }
};

}  // namespace

std::unique_ptr<ProgramVerb> makeShell() {
    return std::make_unique<Shell>();
}

}  // namespace orvex::tools
