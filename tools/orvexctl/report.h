/// @file
/// What a verb has to tell, in words or as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

namespace orvex::tools {

/// Collects one verb's results. Words are printed as they come; as JSON they end up in one object.
class Report {
  public:
    Report(std::ostream& out, bool asJson) : out_(out), asJson_(asJson) {}

    [[nodiscard]] bool asJson() const noexcept { return asJson_; }
    /// Where a verb prints what is not made of lines.
    [[nodiscard]] std::ostream& out() noexcept { return out_; }
    /// One line of words.
    void say(const std::string& line);
    /// The verb's JSON; it replaces the words.
    void give(const nlohmann::ordered_json& value);
    /// Prints what has been collected.
    void finish();

  private:
    std::ostream& out_;
    bool asJson_;
    nlohmann::ordered_json said_ = nlohmann::ordered_json::array();
    nlohmann::ordered_json given_;
};

}  // namespace orvex::tools
