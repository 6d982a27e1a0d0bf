#include "client/table.h"

#include "client/terminaltext.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace client {
namespace {

using Widths = std::vector<std::size_t>;

constexpr std::size_t kGap = 2;
constexpr std::size_t kNarrowestHeading = 4;
constexpr std::size_t kNarrowest = 1;

std::size_t LineWidth(const Widths& widths) {
    return std::accumulate(widths.begin(), widths.end(), kGap * (widths.size() - 1));
}

// As wide as each pair needs, where what is `cut` may be no wider than `limit`.
Widths Limited(const Widths& kept, const Widths& cut, std::size_t limit) {
    Widths widths = kept;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        widths[column] = std::max(kept[column], std::min(cut[column], limit));
    }
    return widths;
}

// Narrows the widest of what is `cut` until the line fits, by no more than is needed.
Widths Fitted(const Widths& kept, const Widths& cut, std::size_t narrowest, std::size_t columns) {
    std::size_t limit = *std::max_element(cut.begin(), cut.end());
    while (limit > narrowest && LineWidth(Limited(kept, cut, limit)) > columns) {
        --limit;
    }
    return Limited(kept, cut, limit);
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
    const bool isCut = isShortened_ && terminal.columns > 0;
    const Widths widths = isCut ? FittedWidths(terminal.columns) : ColumnWidths(rows_.begin());
    std::string text;
    for (const Row& row : rows_) {
        text += Line(row, widths, terminal) + "\n";
    }
    return text;
}

// Headings are cut before what stands below them.
Table::Widths Table::FittedWidths(std::size_t columns) const {
    Widths headings;
    for (const Cell& heading : rows_.front()) {
        headings.push_back(WidthOf(heading.text));
    }
    Widths cells = ColumnWidths(rows_.begin() + 1);
    cells.resize(headings.size());
    const Widths widths = Fitted(cells, headings, kNarrowestHeading, columns);
    return Fitted(Widths(widths.size()), widths, kNarrowest, columns);
}

Table::Widths Table::ColumnWidths(std::vector<Row>::const_iterator first) const {
    Widths widths;
    for (auto row = first; row != rows_.end(); ++row) {
        widths.resize(std::max(widths.size(), row->size()));
        for (std::size_t column = 0; column < row->size(); ++column) {
            widths[column] = std::max(widths[column], WidthOf((*row)[column].text));
        }
    }
    return widths;
}

std::string Table::Line(const Row& row, const Widths& widths, const Terminal& terminal) {
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
