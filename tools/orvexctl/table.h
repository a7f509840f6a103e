/// @file
/// Tables in columns.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace orvex::tools {

/// A table that makes its columns as wide as they need to be.
class Table {
  public:
    enum class Align { left, right };
    struct Column {
        std::string title;
        Align align = Align::left;
    };

    explicit Table(std::vector<Column> columns);
    /// Adds a row; it may be shorter than the table is wide.
    void add(std::vector<std::string> cells);
    /// @param indent blanks before each line
    void print(std::ostream& out, std::size_t indent = 0) const;

  private:
    [[nodiscard]] std::string line(const std::vector<std::string>& cells,
                                   const std::vector<std::size_t>& widths) const;

    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace orvex::tools
