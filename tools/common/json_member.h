/// @file
/// Reading members of JSON objects with messages that name them.
#pragma once

#include <initializer_list>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace orvex::tools {

/// A JSON value and the road to it, "channels[2].raw". Every reading that does not find what it
/// asks for throws std::invalid_argument with that road.
class JsonMember {
  public:
    /// @param value must outlive this object
    explicit JsonMember(const nlohmann::json& value, std::string path = {});

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] bool isNull() const noexcept { return value_->is_null(); }
    [[nodiscard]] bool has(const char* name) const;
    /// A member that must be there.
    [[nodiscard]] JsonMember operator[](const char* name) const;
    /// The elements of a list.
    [[nodiscard]] std::vector<JsonMember> elements() const;

    [[nodiscard]] std::string text() const;
    [[nodiscard]] bool truth() const;
    [[nodiscard]] double number() const;
    [[nodiscard]] int integer(int least = std::numeric_limits<int>::min(),
                              int most = std::numeric_limits<int>::max()) const;

    /// Requires an object without other members than these.
    void requireOnly(std::initializer_list<const char*> names) const;
    /// @throws std::invalid_argument with the road and what is wrong
    [[noreturn]] void fail(const std::string& problem) const;

  private:
    const nlohmann::json* value_;
    std::string path_;
};

}  // namespace orvex::tools
