/// @file
/// A program that a test starts and talks to.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace orvex_test {

/// A program in a process of its own, with the test at its standard input, output and error.
class ChildProgram {
  public:
    /// @param command the program's path and arguments
    /// @throws std::system_error when it cannot be started
    explicit ChildProgram(const std::vector<std::string>& command);
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;
    /// Ends the program when it still runs.
    ~ChildProgram();

    /// Reads its output up to a line of this text, which is not returned.
    /// @return the lines before; all lines when the text does not come
    [[nodiscard]] std::vector<std::string> linesUntil(const std::string& text);
    /// The next line of its output; empty at the end of it.
    [[nodiscard]] std::string nextLine();
    /// Sends a line.
    void say(const std::string& line);
    /// Waits for its end.
    /// @return the lines it has written since
    [[nodiscard]] std::vector<std::string> finish();
    /// Its exit status after finish(); 128 + the signal that ended it.
    [[nodiscard]] int status() const noexcept { return status_; }

  private:
    bool readLine(std::string& line);

    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
    int status_ = -1;
    std::string unread_;
};

}  // namespace orvex_test
