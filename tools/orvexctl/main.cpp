#include <csignal>
#include <iostream>

#include "tools/orvexctl/command_line.h"
#include "tools/orvexctl/driver_log.h"

int main(int argc, char** argv) {
    using namespace orvex::tools;
    // Output that nobody reads must not keep a light from being closed.
    std::signal(SIGPIPE, SIG_IGN);
    ExitCode code = runCommandLine(argc, argv);
    try {
        endDriverLog();
    } catch (const Failure& failure) {
        code = code == ExitCode::ok ? report(failure) : (report(failure), code);
    }
    std::cout.flush();
    if (!std::cout && code == ExitCode::ok) {
        code = report(Failure(ExitCode::file, "standard output could not be written"));
    }
    return static_cast<int>(code);
}
