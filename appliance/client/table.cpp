#include "client/table.h"

#include "client/terminaltext.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace client {
namespace {

constexpr std::size_t kGap = 2;

using Row = std::vector<std::string>;

std::vector<std::size_t> ColumnWidths(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths;
    for (const Row& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], WidthOf(row[column]));
        }
    }
    return widths;
}

std::string Line(const Row& row, const std::vector<std::size_t>& widths) {
    std::string line;
    for (std::size_t column = 0; column + 1 < row.size(); ++column) {
        line += row[column] + std::string(widths[column] - WidthOf(row[column]) + kGap, ' ');
    }
    return line + row.back() + "\n";
}

}  // namespace

Table::Table(std::vector<std::string> headings) {
    AddRow(std::move(headings));
}

void Table::AddRow(std::vector<std::string> cells) {
    for (std::string& cell : cells) {
        cell = cell.empty() ? "-" : Printable(cell);
    }
    rows_.push_back(std::move(cells));
}

std::string Table::Text() const {
    const std::vector<std::size_t> widths = ColumnWidths(rows_);
    std::string text;
    for (const Row& row : rows_) {
        text += Line(row, widths);
    }
    return text;
}

}  // namespace client
