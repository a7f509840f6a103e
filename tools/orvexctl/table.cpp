#include "tools/orvexctl/table.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "tools/orvexctl/terminal.h"

namespace orvex::tools {

namespace {

constexpr std::size_t kGap = 2;

std::string padded(const std::string& text, std::size_t width, Table::Align align) {
    const std::string blanks(width - std::min(width, displayWidth(text)), ' ');
    return align == Table::Align::left ? text + blanks : blanks + text;
}

}  // namespace

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {
    std::vector<std::string> titles;
    for (const Column& column : columns_) {
        titles.push_back(column.title);
    }
    add(std::move(titles));
}

void Table::add(std::vector<std::string> cells) {
    rows_.push_back(std::move(cells));
}

void Table::print(std::ostream& out, std::size_t indent) const {
    std::vector<std::size_t> widths(columns_.size());
    for (const auto& row : rows_) {
        for (std::size_t k = 0; k < row.size(); ++k) {
            widths[k] = std::max(widths[k], displayWidth(row[k]));
        }
    }
    for (const auto& row : rows_) {
        out << std::string(indent, ' ') << line(row, widths) << '\n';
    }
}

std::string Table::line(const std::vector<std::string>& cells,
                        const std::vector<std::size_t>& widths) const {
    std::string text;
    for (std::size_t k = 0; k < cells.size(); ++k) {
        text +=
            (k > 0 ? std::string(kGap, ' ') : "") + padded(cells[k], widths[k], columns_[k].align);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace orvex::tools
