/// @file
/// A path under which clients find a simulated port.
#pragma once

#include <string>
#include <vector>

namespace orvex::tools {

/// A symbolic link; one that an earlier run has left behind is replaced, nothing else is.
class PublishedLink {
  public:
    /// @throws Failure when something else is at the path, or no link can be made there
    PublishedLink(std::string path, std::string target);
    PublishedLink(const PublishedLink&) = delete;
    PublishedLink& operator=(const PublishedLink&) = delete;
    /// Removes the link if it is still this one.
    ~PublishedLink();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    const std::string path_;
    const std::string target_;
};

/// @throws Failure when a link cannot be made at one of the paths, whatever its target
void requireFreeLinks(const std::vector<std::string>& paths);

}  // namespace orvex::tools
