#include "client/table.h"

#include "client/terminaltext.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace client {
namespace {

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowest = 4;

// The widths when no column may be wider than `limit`.
std::vector<std::size_t> Limited(std::vector<std::size_t> widths, std::size_t limit) {
    for (std::size_t& width : widths) {
        width = std::min(width, limit);
    }
    return widths;
}

std::size_t LineWidth(const std::vector<std::size_t>& widths) {
    return std::accumulate(widths.begin(), widths.end(), kGap * (widths.size() - 1));
}

// The widest columns are narrowed, by no more than is needed.
std::vector<std::size_t> Fitted(const std::vector<std::size_t>& widths, std::size_t columns) {
    std::size_t limit = *std::max_element(widths.begin(), widths.end());
    while (limit > kNarrowest && LineWidth(Limited(widths, limit)) > columns) {
        --limit;
    }
    return Limited(widths, limit);
}

}  // namespace

Table::Table(std::vector<std::string> headings) : isShortened_(true) {
    AddRow(std::move(headings));
}

void Table::AddRow(std::vector<std::string> cells) {
    Row row;
    for (const std::string& cell : cells) {
        row.push_back({cell.empty() ? "-" : Printable(cell)});
    }
    rows_.push_back(std::move(row));
}

void Table::Paint(std::size_t column, Colour colour) {
    rows_.back().at(column).colour = colour;
}

std::string Table::Text(const Terminal& terminal) const {
    std::vector<std::size_t> widths = ColumnWidths();
    const bool isCut = isShortened_ && terminal.columns > 0;
    if (isCut) {
        widths = Fitted(widths, terminal.columns);
    }
    std::string text;
    for (const Row& row : rows_) {
        text += Line(row, widths, terminal) + "\n";
    }
    return text;
}

std::vector<std::size_t> Table::ColumnWidths() const {
    std::vector<std::size_t> widths;
    for (const Row& row : rows_) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], WidthOf(row[column].text));
        }
    }
    return widths;
}

std::string Table::Line(const Row& row, const std::vector<std::size_t>& widths, const Terminal& terminal) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
        const std::string text = Shortened(row[column].text, widths[column]);
        const bool isPainted = terminal.hasColour && row[column].colour != Colour::kNone;
        line += isPainted ? SequenceFor(row[column].colour) + text + SequenceFor(Colour::kNone) : text;
        if (column + 1 < row.size()) {
            line += std::string(widths[column] - WidthOf(text) + kGap, ' ');
        }
    }
    return line;
}

}  // namespace client
