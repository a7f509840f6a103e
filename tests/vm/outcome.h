/// @file
/// Programs that are run to their end.
#pragma once

#include <string>
#include <vector>

namespace orvex_test {

/// What a program has left behind.
struct Outcome {
    int status = -1;
    std::string output;  ///< Standard output and error.
};

/// Runs a program, given with its path.
[[nodiscard]] Outcome run(const std::vector<std::string>& command);

/// Runs a program with the rights of an ordinary user.
/// @param groups their names, behind commas; the user is in no other
[[nodiscard]] Outcome runAs(const std::string& user, const std::string& groups,
                            const std::vector<std::string>& command);

}  // namespace orvex_test
