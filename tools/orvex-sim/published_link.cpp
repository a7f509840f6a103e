#include "tools/orvex-sim/published_link.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

namespace fs = std::filesystem;

namespace {

/// The text of a link; empty when the path is none.
fs::path targetOf(const std::string& path) {
    std::error_code error;
    const fs::path target = fs::read_symlink(path, error);
    return error ? fs::path() : target;
}

/// A run's directory goes with it, so that its links then lead into nowhere.
bool isStale(const std::string& path) {
    const fs::path target = targetOf(path);
    std::error_code ignored;
    return target.string().find("/orvex-sim-") != std::string::npos &&
           !fs::exists(target.parent_path(), ignored);
}

void requireFreeLink(const std::string& path) {
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(path, ignored)) && !isStale(path)) {
        throw Failure(kBadInput, "--link " + path +
                                     ": there is something already that orvex-sim has not left "
                                     "behind; it stays as it is");
    }
}

}  // namespace

void requireFreeLinks(const std::vector<std::string>& paths) {
    for (auto path = paths.begin(); path != paths.end(); ++path) {
        requireFreeLink(*path);
        if (std::find(paths.begin(), path, *path) != path) {
            throw Failure(kBadInput, "--link " + *path + " is given twice");
        }
    }
}

PublishedLink::PublishedLink(std::string path, std::string target)
    : path_(std::move(path)), target_(std::move(target)) {
    requireFreeLink(path_);
    if (isStale(path_)) {
        ::unlink(path_.c_str());
    }
    if (::symlink(target_.c_str(), path_.c_str()) != 0) {
        throw Failure(kSystemRefused, "--link " + path_ + ": cannot be made: " + errorText(errno));
    }
}

PublishedLink::~PublishedLink() {
    if (targetOf(path_) == target_) {
        ::unlink(path_.c_str());
    }
}

}  // namespace orvex::tools
