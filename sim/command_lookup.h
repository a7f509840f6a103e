/// @file
/// From a request to the command it stands for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "device/models.h"
#include "include/qtr_orvex.h"

namespace orvex::sim {

/// All commands of a model.
/// @throws std::invalid_argument when there is no such model
[[nodiscard]] CommandTable commandsOfModel(OrvexType model);

/// A request understood. Without names it stands for no command of the model.
struct Match {
    std::vector<std::string> names;  ///< More than one where a model's commands share a request.
    std::string value;               ///< What follows the command's own text.
};

/// A model's commands by their requests.
class CommandLookup {
  public:
    /// @throws std::invalid_argument when there is no such model
    explicit CommandLookup(OrvexType model);

    /// The commands whose text begins the request, the longest text deciding.
    /// @param request without its carriage return
    [[nodiscard]] Match find(std::string_view request) const;

  private:
    struct Entry {
        std::string text;
        std::vector<std::string> names;
    };

    void add(const std::string& text, const std::string& name);

    std::vector<Entry> entries_;  // the longest text first
};

}  // namespace orvex::sim
