/// @file
/// Files that a test leaves nothing of.
#pragma once

#include <filesystem>
#include <string>

namespace orvex_test {

/// A directory that is removed with all its files.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    /// The path of a file in it.
    [[nodiscard]] std::string file(const std::string& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

/// Makes a directory the working directory while it exists.
class WorkingDirectory {
  public:
    explicit WorkingDirectory(const std::filesystem::path& path);
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;
    ~WorkingDirectory();

  private:
    std::filesystem::path original_;
};

/// A file's text; empty when there is no such file.
[[nodiscard]] std::string contentsOf(const std::filesystem::path& path);

}  // namespace orvex_test
