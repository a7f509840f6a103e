#include "tests/vm/outcome.h"

#include "tests/support/child_program.h"

namespace orvex_test {

Outcome run(const std::vector<std::string>& command) {
    ChildProgram program(command);
    Outcome outcome;
    for (const std::string& line : program.finish()) {
        outcome.output += line + "\n";
    }
    outcome.status = program.status();
    return outcome;
}

Outcome runAs(const std::string& user, const std::string& groups,
              const std::vector<std::string>& command) {
    std::vector<std::string> all = {"/usr/bin/setpriv", "--reuid=" + user, "--regid=" + user};
    all.push_back(groups.empty() ? "--clear-groups" : "--groups=" + groups);
    all.insert(all.end(), command.begin(), command.end());
    return run(all);
}

}  // namespace orvex_test
