#include "tools/orvexctl/options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

namespace orvex::tools {

namespace {

constexpr const char* kChoice = "Choosing the light";
constexpr const char* kOutput = "Output";
constexpr const char* kConduct = "Conduct";
constexpr double kLongestTimeout = 86400;

}  // namespace

void addCommonOptions(CLI::App& command, CommonOptions& options) {
    command
        .add_option("-d,--device", options.device,
                    "Port, model or number in the list; not needed when there is one")
        ->type_name("DEVICE")
        ->group(kChoice);
    command
        .add_option("--model", options.model,
                    "The model on --port, for lights that a scan does not find")
        ->type_name("NAME")
        ->group(kChoice);
    command.add_option("--port", options.port, "The port of the light of --model")
        ->type_name("PATH")
        ->group(kChoice);
    command.add_flag("--force", options.force, "Use the port even if another program holds it")
        ->group(kChoice);
    command.add_flag("--json", options.json, "Print JSON")->group(kOutput);
    command.add_flag("--verbose", options.verbose, "Tell on standard error what goes on")
        ->group(kOutput);
    command.add_flag("--trace", options.trace, "The same with every request and reply")
        ->group(kOutput);
    command
        .add_option("--log", options.log,
                    "Append the library's log to FILE instead, with times (--verbose: less)")
        ->type_name("FILE")
        ->group(kOutput);
    command.add_option("--timeout", options.timeout, "End with exit code 7 after so many seconds")
        ->check(CLI::Range(0.001, kLongestTimeout))
        ->type_name("SECONDS")
        ->group(kConduct);
    command
        .add_flag("--keep-open", options.keepOpen,
                  "End without the closing requests: an open shutter stays open")
        ->group(kConduct);
}

}  // namespace orvex::tools
