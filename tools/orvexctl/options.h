/// @file
/// The options that all sub-commands take.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace orvex::tools {

struct CommonOptions {
    std::string device;  ///< A port, a model or a number of `list`; empty: the only one there is.
    std::string model;   ///< With a port: a light that a scan does not find.
    std::string port;
    bool json = false;
    bool verbose = false;
    bool trace = false;
    std::string log;
    double timeout = 0;  ///< Seconds; 0: none.
    bool keepOpen = false;
    bool force = false;
};

/// Adds them to a command; commands may share one set of values.
void addCommonOptions(CLI::App& command, CommonOptions& options);

}  // namespace orvex::tools
