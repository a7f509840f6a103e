/// @file
/// Reading lines from a person, with history and completion.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvex::tools {

/// Reads lines from a terminal with readline, from anything else as they come.
class LineEditor {
  public:
    /// Given the words before the one that is being typed, tells what that can be.
    using Completion = std::function<std::vector<std::string>(const std::string& before)>;

    LineEditor(std::string prompt, Completion tell);
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;
    /// Saves the history.
    ~LineEditor();

    [[nodiscard]] bool isInteractive() const noexcept { return interactive_; }
    /// The next line; nothing at the end.
    [[nodiscard]] std::optional<std::string> next();

  private:
    [[nodiscard]] std::optional<std::string> nextFromTerminal();

    std::string prompt_;
    bool interactive_;
    std::string historyFile_;
};

}  // namespace orvex::tools
