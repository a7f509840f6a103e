#include "tools/orvexctl/port_link.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace orvex::tools {

namespace {

/// A path and, when it is a link in some folder, what it leads to, link by link.
std::vector<std::string> wayAlong(const std::string& path) {
    constexpr std::size_t kMostLinks = 40;  // as many as the kernel follows
    std::vector<std::string> way{path};
    while (way.size() <= kMostLinks) {
        const std::filesystem::path last = way.back();
        std::error_code noLink;
        const std::filesystem::path target = std::filesystem::read_symlink(last, noLink);
        if (noLink || !last.has_parent_path()) {
            break;
        }
        way.push_back((last.parent_path() / target).lexically_normal().string());
    }
    return way;
}

}  // namespace

bool isPortName(const std::string& path) {
    return path.find("tty") != std::string::npos;
}

std::string portBehind(const std::string& path) {
    const std::vector<std::string> way = wayAlong(path);
    const auto port = std::find_if(way.begin(), way.end(), isPortName);
    return port == way.end() ? path : *port;
}

bool leadsTo(const std::string& path, const std::string& port) {
    const std::vector<std::string> way = wayAlong(path);
    return std::find(way.begin(), way.end(), port) != way.end();
}

}  // namespace orvex::tools
