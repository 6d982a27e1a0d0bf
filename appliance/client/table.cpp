#include "client/table.h"

#include "client/terminaltext.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace client {
namespace {

using Widths = std::vector<std::size_t>;

constexpr std::size_t kGap = 2;
constexpr std::size_t kReadable = 14;
constexpr std::size_t kReadableName = 24;  // in the first column, which tells the rows apart

std::size_t LineWidth(const Widths& widths) {
    return std::accumulate(widths.begin(), widths.end(), kGap * (widths.size() - 1));
}

// What of the columns has to be seen, where `whole` would be all of them.
Widths ReadableWidths(const Widths& whole) {
    Widths widths;
    for (const std::size_t width : whole) {
        widths.push_back(std::min(width, widths.empty() ? kReadableName : kReadable));
    }
    return widths;
}

// No wider than `limit`, except where less could not be read.
Widths Limited(const Widths& readable, const Widths& whole, std::size_t limit) {
    Widths widths = readable;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        widths[column] = std::max(readable[column], std::min(whole[column], limit));
    }
    return widths;
}

// The first columns, as many as can be read in a line of `columns`; the widest are cut, by no more than is
// needed.
Widths Fitted(const Widths& whole, std::size_t columns) {
    Widths readable = ReadableWidths(whole);
    while (readable.size() > 1 && LineWidth(readable) > columns) {
        readable.pop_back();
    }
    readable[0] = std::min(readable[0], columns);
    std::size_t limit = *std::max_element(whole.begin(), whole.end());
    while (limit > 0 && LineWidth(Limited(readable, whole, limit)) > columns) {
        --limit;
    }
    return Limited(readable, whole, limit);
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
    const Widths widths = WidthsOn(terminal);
    std::string text;
    for (const Row& row : rows_) {
        text += Line(row, widths, terminal) + "\n";
    }
    return text;
}

std::size_t Table::LeftOut(const Terminal& terminal) const {
    return rows_.empty() ? 0 : rows_.front().size() - WidthsOn(terminal).size();
}

Table::Widths Table::WidthsOn(const Terminal& terminal) const {
    const bool isCut = isShortened_ && terminal.columns > 0;
    return isCut ? Fitted(WholeWidths(), terminal.columns) : WholeWidths();
}

Table::Widths Table::WholeWidths() const {
    Widths widths;
    for (const Row& row : rows_) {
        widths.resize(row.size());
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], WidthOf(row[column].text));
        }
    }
    return widths;
}

std::string Table::Line(const Row& row, const Widths& widths, const Terminal& terminal) {
    std::string line;
    for (std::size_t column = 0; column < widths.size(); ++column) {
        const std::string text = Shortened(row[column].text, widths[column]);
        const bool isPainted = terminal.hasColour && row[column].colour != Colour::kNone;
        line += isPainted ? SequenceFor(row[column].colour) + text + SequenceFor(Colour::kNone) : text;
        if (column + 1 < widths.size()) {
            line += std::string(widths[column] - WidthOf(text) + kGap, ' ');
        }
    }
    return line;
}

}  // namespace client
