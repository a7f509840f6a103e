#include "tools/orvexctl/port_holders.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

/// The entries of a directory; none when it cannot be read.
std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> entries;
    std::error_code unreadable;
    fs::directory_iterator entry(directory, unreadable);
    while (!unreadable && entry != fs::directory_iterator()) {
        entries.push_back(entry->path());
        entry.increment(unreadable);
    }
    return entries;
}

std::vector<Process> allProcesses(const fs::path& proc) {
    std::vector<Process> processes;
    for (const fs::path& entry : entriesOf(proc)) {
        const std::string number = entry.filename().string();
        if (number.find_first_not_of("0123456789") == std::string::npos) {
            Process process{static_cast<pid_t>(std::strtol(number.c_str(), nullptr, 10)), ""};
            std::getline(std::ifstream(entry / "comm") >> std::ws, process.name);
            processes.push_back(process);
        }
    }
    std::sort(processes.begin(), processes.end(),
              [](const Process& a, const Process& b) { return a.id < b.id; });
    return processes;
}

std::string targetOf(const fs::path& link) {
    std::error_code gone;
    return fs::read_symlink(link, gone).string();
}

bool isSame(const fs::path& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

/// Whether a process has the port open. One that also has a pseudo-terminal's other end plays the
/// device behind the port.
bool holds(const fs::path& process, const std::string& port) {
    bool found = false;
    for (const fs::path& descriptor : entriesOf(process / "fd")) {
        const std::string target = targetOf(descriptor);
        if (target.find("/ptmx") != std::string::npos) {
            return false;
        }
        const bool mayBePort =
            target.find("/tty") != std::string::npos || target.find("/pts/") != std::string::npos;
        found |= mayBePort && isSame(descriptor, port);
    }
    return found;
}

}  // namespace

std::string describe(const std::vector<Process>& processes) {
    std::string text;
    for (const Process& process : processes) {
        const std::string name = process.name.empty() ? "a program" : process.name;
        text += (text.empty() ? "" : ", ") + name + " (process " + std::to_string(process.id) + ")";
    }
    return text;
}

std::vector<Process> holdersOf(const std::string& port, const fs::path& proc) {
    std::vector<Process> processes = allProcesses(proc);
    const auto end =
        std::remove_if(processes.begin(), processes.end(), [&](const Process& process) {
            return process.id == ::getpid() || !holds(proc / std::to_string(process.id), port);
        });
    processes.erase(end, processes.end());
    return processes;
}

std::vector<Process> processesNamed(const std::string& name, const fs::path& proc) {
    std::vector<Process> processes = allProcesses(proc);
    const auto end = std::remove_if(processes.begin(), processes.end(),
                                    [&](const Process& process) { return process.name != name; });
    processes.erase(end, processes.end());
    return processes;
}

}  // namespace orvex::tools
