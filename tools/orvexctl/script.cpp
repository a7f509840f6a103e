#include "tools/orvexctl/script.h"

#include <istream>
#include <utility>

#include "tools/orvexctl/failure.h"
#include "tools/orvexctl/verb_line.h"

namespace orvex::tools {

namespace {

constexpr unsigned kMostRepetitions = 1'000'000;
constexpr double kLongestWait = 86'400'000;

/// A line's parser with what only scripts have.
class ScriptLine {
  public:
    ScriptLine() {
        const std::map<std::string, double> units = {{"ms", 1}, {"s", 1000}, {"min", 60'000}};
        CLI::App* wait = line_.parser().add_subcommand("wait", "Wait");
        wait->add_option("duration", wait_, "250ms, 1.5s or 2min")
            ->required()
            ->transform(CLI::AsNumberWithUnit(units, CLI::AsNumberWithUnit::UNIT_REQUIRED))
            ->check(CLI::Range(0.0, kLongestWait));
        CLI::App* repeat = line_.parser().add_subcommand("repeat", "Repeat what follows up to end");
        repeat->add_option("count", repetitions_, "How often")
            ->required()
            ->check(CLI::Range(1U, kMostRepetitions));
        line_.parser().add_subcommand("end", "The end of repeat");
    }

    Step read(const std::string& text) {
        line_.parse(text);
        Step step;
        step.text = text;
        step.verb = line_.takeVerb();
        step.wait = std::chrono::milliseconds(static_cast<long>(wait_));
        step.repetitions = repetitions_;
        return step;
    }

    [[nodiscard]] bool isEnd() const { return line_.name() == "end"; }

  private:
    VerbLine line_;
    double wait_ = 0;
    unsigned repetitions_ = 0;
};

/// A line without its comment and the blanks around it.
std::string content(const std::string& line) {
    constexpr const char* kBlanks = " \t\r";
    const std::string text = line.substr(0, line.find('#'));
    const std::size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::string::npos
               ? ""
               : text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

class ScriptParser {
  public:
    ScriptParser(std::istream& text, const std::string& name) : text_(text), name_(name) {}

    std::vector<Step> parse() { return parseBody(0); }

  private:
    /// @param opened the line of the repetition that this is the body of; 0: the script itself
    std::vector<Step> parseBody(int opened) {
        std::vector<Step> steps;
        for (std::string text; std::getline(text_, text);) {
            ++line_;
            text = content(text);
            if (text.empty()) {
                continue;
            }
            ScriptLine parser;
            Step step = read(parser, text);
            if (parser.isEnd()) {
                return closeBody(opened, std::move(steps));
            }
            if (step.repetitions > 0) {
                step.body = parseBody(step.line);
            }
            steps.push_back(std::move(step));
        }
        if (opened != 0) {
            throw fail("this repeat has no end", opened);
        }
        return steps;
    }

    Step read(ScriptLine& parser, const std::string& text) const {
        try {
            Step step = parser.read(text);
            step.line = line_;
            return step;
        } catch (const HelpWanted&) {
            throw fail("a script cannot ask for help", line_);
        } catch (const Failure& failure) {
            throw inLine(failure, name_, line_);
        }
    }

    std::vector<Step> closeBody(int opened, std::vector<Step> steps) const {
        if (opened == 0) {
            throw fail("this end has no repeat", line_);
        }
        return steps;
    }

    [[nodiscard]] Failure fail(const std::string& problem, int line) const {
        return inLine(Failure(ExitCode::usage, problem), name_, line);
    }

    std::istream& text_;
    const std::string& name_;
    int line_ = 0;
};

}  // namespace

std::vector<Step> parseScript(std::istream& text, const std::string& name) {
    return ScriptParser(text, name).parse();
}

void prepareScript(const std::vector<Step>& steps, Light& light, const std::string& name) {
    for (const Step& step : steps) {
        try {
            if (step.verb) {
                step.verb->prepare(light);
            }
        } catch (const Failure& failure) {
            throw inLine(failure, name, step.line);
        }
        prepareScript(step.body, light, name);
    }
}

std::size_t countSteps(const std::vector<Step>& steps) {
    std::size_t count = 0;
    for (const Step& step : steps) {
        count += step.repetitions > 0 ? step.repetitions * countSteps(step.body) : 1;
    }
    return count;
}

Failure inLine(const Failure& failure, const std::string& name, int line) {
    return {failure.code(), name + ", line " + std::to_string(line) + ": " + failure.what(),
            failure.advice()};
}

}  // namespace orvex::tools
