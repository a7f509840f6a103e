#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>

#include "tools/orvexctl/choose_light.h"
#include "tools/orvexctl/command_line.h"
#include "tools/orvexctl/interrupts.h"
#include "tools/orvexctl/perform.h"
#include "tools/orvexctl/program_verb.h"
#include "tools/orvexctl/progress_bar.h"
#include "tools/orvexctl/script.h"

namespace orvex::tools {

namespace {

/// Carries a script out on an open light.
class ScriptRunner {
  public:
    ScriptRunner(Light& light, const std::string& name, bool asJson, std::size_t total)
        : light_(light), name_(name), asJson_(asJson), bar_(total) {}

    /// @return false when it was interrupted
    bool run(const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            for (unsigned k = 0; k < step.repetitions; ++k) {
                if (!run(step.body)) {
                    return false;
                }
            }
            if (step.repetitions == 0 && !runStep(step)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] int line() const noexcept { return line_; }

  private:
    bool runStep(const Step& step) {
        line_ = step.line;
        bar_.show(done_, step.text);
        if (step.verb) {
            bar_.clear();
            carryOut(step);
        } else {
            sleepUnlessInterrupted(step.wait);
        }
        ++done_;
        return !isInterrupted();
    }

    void carryOut(const Step& step) {
        try {
            Report report(std::cout, asJson_);
            step.verb->perform(light_, report);
            report.finish();
        } catch (const Failure& failure) {
            throw inLine(failure, name_, step.line);
        }
    }

    Light& light_;
    const std::string& name_;
    bool asJson_;
    ProgressBar bar_;
    std::size_t done_ = 0;
    int line_ = 0;
};

/// Switches off what the script has switched on and says so.
void switchOffAgain(Light& light) {
    if (!light.switchedOn().any()) {
        return;
    }
    try {
        light.switchOffAgain();
        std::cerr << "orvexctl: switched off again what the script had switched on\n";
    } catch (const Failure& failure) {
        std::cerr << "orvexctl: what the script had switched on may still be on\n";
        report(failure);
    }
}

class Run final : public ProgramVerb {
  public:
    void configure(CLI::App& command) override {
        command.add_option("script", path_, "A file of verbs, one in a line; - is standard input")
            ->required()
            ->type_name("SCRIPT");
    }

    ExitCode run(const CommonOptions& options) override {
        const std::vector<Step> steps = read();
        ExitCode code = ExitCode::ok;
        catchInterrupts();
        withLight(options, [&](Light& light) { code = runOn(light, steps, options); });
        return code;
    }

  private:
    [[nodiscard]] std::vector<Step> read() const {
        if (path_ == "-") {
            return parseScript(std::cin, name());
        }
        errno = 0;
        std::ifstream file(path_);
        if (!file || file.peek() == std::ifstream::traits_type::eof()) {
            const std::string why = errno != 0 ? std::strerror(errno) : "it is empty";
            throw Failure(ExitCode::file, "the script " + path_ + " cannot be read: " + why);
        }
        return parseScript(file, path_);
    }

    ExitCode runOn(Light& light, const std::vector<Step>& steps,
                   const CommonOptions& options) const {
        const std::string script = name();
        prepareScript(steps, light, script);
        ScriptRunner runner(light, script, options.json, countSteps(steps));
        try {
            if (runner.run(steps)) {
                return ExitCode::ok;
            }
        } catch (const Failure&) {
            switchOffAgain(light);
            throw;
        }
        std::cerr << "orvexctl: " << script << ": interrupted in line " << runner.line() << '\n';
        switchOffAgain(light);
        return interruptedCode();
    }

    [[nodiscard]] std::string name() const { return path_ == "-" ? "standard input" : path_; }

    std::string path_;
};

}  // namespace

std::unique_ptr<ProgramVerb> makeRun() {
    return std::make_unique<Run>();
}

}  // namespace orvex::tools
