/// @file
/// The programs that hold a port.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvex::tools {

/// A running program.
struct Process {
    pid_t id = 0;
    std::string name;
};

/// "python3 (process 4711)", or several with commas.
[[nodiscard]] std::string describe(const std::vector<Process>& processes);

/// All programs but this one that have a port open, as far as the system lets this user see them.
/// @param proc where the process file system is
[[nodiscard]] std::vector<Process> holdersOf(const std::string& port,
                                             const std::filesystem::path& proc = "/proc");

/// The running programs of a name.
[[nodiscard]] std::vector<Process> processesNamed(const std::string& name,
                                                  const std::filesystem::path& proc = "/proc");

}  // namespace orvex::tools
