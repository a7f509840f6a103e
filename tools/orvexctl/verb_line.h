/// @file
/// Verbs given as lines of text: in the shell and in scripts.
#pragma once

#include <CLI/App.hpp>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "tools/orvexctl/verb.h"

namespace orvex::tools {

/// Asked for with --help; what() is the help.
class HelpWanted : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A parser for one line.
class VerbLine {
  public:
    VerbLine();

    /// For commands that are no verbs.
    [[nodiscard]] CLI::App& parser() noexcept { return parser_; }
    /// Takes a line apart and checks the verb in it.
    /// @throws Failure when it is not understood; HelpWanted
    void parse(const std::string& line);
    /// The line's verb; null: it is a command that is no verb.
    [[nodiscard]] std::unique_ptr<LightVerb> takeVerb();
    /// The name of the command that the line is.
    [[nodiscard]] std::string name() const;
    /// The verbs, before a line has been parsed.
    [[nodiscard]] std::string help() const { return parser_.help(); }

  private:
    [[noreturn]] void failUnknown(const std::string& problem) const;

    CLI::App parser_;
    std::map<std::string, std::unique_ptr<LightVerb>> verbs_;
};

}  // namespace orvex::tools
