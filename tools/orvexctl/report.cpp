#include "tools/orvexctl/report.h"

namespace orvex::tools {

namespace {

constexpr int kIndent = 2;

}  // namespace

void Report::say(const std::string& line) {
    if (asJson_) {
        said_.push_back(line);
    } else {
        out_ << line << std::endl;
    }
}

void Report::give(const nlohmann::ordered_json& value) {
    given_ = value;
}

void Report::finish() {
    if (!asJson_) {
        return;
    }
    const nlohmann::ordered_json words = {{"said", said_}};
    out_ << (given_.is_null() ? words : given_).dump(kIndent) << std::endl;
}

}  // namespace orvex::tools
