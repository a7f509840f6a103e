#include "tests/support/temporary_directory.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace orvex_test {

TemporaryDirectory::TemporaryDirectory() {
    std::string name = "/tmp/orvex_test_XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    path_ = std::filesystem::canonical(name);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

WorkingDirectory::WorkingDirectory(const std::filesystem::path& path)
    : original_(std::filesystem::current_path()) {
    std::filesystem::current_path(path);
}

WorkingDirectory::~WorkingDirectory() {
    std::error_code ignored;
    std::filesystem::current_path(original_, ignored);
}

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace orvex_test
