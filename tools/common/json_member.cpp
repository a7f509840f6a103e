#include "tools/common/json_member.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "tools/common/nearest.h"

namespace orvex::tools {

JsonMember::JsonMember(const nlohmann::json& value, std::string path)
    : value_(&value), path_(std::move(path)) {}

bool JsonMember::has(const char* name) const {
    return value_->is_object() && value_->contains(name);
}

JsonMember JsonMember::operator[](const char* name) const {
    if (!has(name)) {
        fail("member \"" + std::string(name) + "\" is missing");
    }
    return JsonMember((*value_)[name], path_.empty() ? name : path_ + "." + name);
}

std::vector<JsonMember> JsonMember::elements() const {
    if (!value_->is_array()) {
        fail("must be a list");
    }
    std::vector<JsonMember> members;
    for (std::size_t k = 0; k < value_->size(); ++k) {
        members.emplace_back((*value_)[k], path_ + "[" + std::to_string(k) + "]");
    }
    return members;
}

std::string JsonMember::text() const {
    if (!value_->is_string()) {
        fail("must be a text");
    }
    return value_->get<std::string>();
}

bool JsonMember::truth() const {
    if (!value_->is_boolean()) {
        fail("must be true or false");
    }
    return value_->get<bool>();
}

double JsonMember::number() const {
    if (!value_->is_number()) {
        fail("must be a number");
    }
    return value_->get<double>();
}

int JsonMember::integer(int least, int most) const {
    if (!value_->is_number_integer()) {
        fail("must be a whole number");
    }
    const double value = value_->get<double>();
    if (value < least || value > most) {
        fail(value_->dump() + " is not from " + std::to_string(least) + " to " +
             std::to_string(most));
    }
    return value_->get<int>();
}

void JsonMember::requireOnly(std::initializer_list<const char*> names) const {
    if (!value_->is_object()) {
        fail("must be an object");
    }
    const std::vector<std::string> known(names.begin(), names.end());
    for (const auto& member : value_->items()) {
        if (std::find(known.begin(), known.end(), member.key()) == known.end()) {
            fail("unknown member \"" + member.key() + "\"" + suggestion(member.key(), known));
        }
    }
}

void JsonMember::fail(const std::string& problem) const {
    throw std::invalid_argument(path_.empty() ? problem : path_ + ": " + problem);
}

}  // namespace orvex::tools
