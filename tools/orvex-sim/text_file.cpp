#include "tools/orvex-sim/text_file.h"

#include <array>
#include <cerrno>
#include <fstream>

#include "tools/orvex-sim/failure.h"

namespace orvex::tools {

std::string readText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text;
    std::array<char, 4096> buffer{};
    while (file.read(buffer.data(), buffer.size()), file.gcount() > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(file.gcount()));
    }
    if (!file.eof()) {
        throw Failure(kBadInput, path + ": " + errorText(errno));
    }
    return text;
}

}  // namespace orvex::tools
