// Rows of text in aligned columns.
#pragma once

#include "client/terminal.h"

#include <cstddef>
#include <string>
#include <vector>

namespace client {

// Collects rows; all have the same number of cells. Cells may hold any bytes.
class Table {
public:
    // A table without headings: lines of names and values, or of text.
    Table() = default;

    // A table whose first line is `headings`.
    explicit Table(std::vector<std::string> headings);

    // Adds a row at the end.
    void AddRow(std::vector<std::string> cells);

    // Gives a cell of the last row a colour, where there are colours.
    void Paint(std::size_t column, Colour colour);

    // Keeps every cell whole, for texts of which no word may be lost.
    void KeepWhole() { isShortened_ = false; }

    // The table as lines, each with its line end: cells printable, an empty one as "-", columns two blanks
    // apart. On a terminal, one with headings has its widest cells cut and, where too little of them would
    // be seen, its last columns left out, so that no line is longer than the terminal is wide.
    std::string Text(const Terminal& terminal = {}) const;

    // The number of columns that are left out there.
    std::size_t LeftOut(const Terminal& terminal) const;

private:
    struct Cell {
        std::string text;
        Colour colour = Colour::kNone;
    };
    using Row = std::vector<Cell>;
    using Widths = std::vector<std::size_t>;

    Widths WidthsOn(const Terminal& terminal) const;
    Widths WholeWidths() const;
    static std::string Line(const Row& row, const Widths& widths, const Terminal& terminal);

    std::vector<Row> rows_;
    bool isShortened_ = false;
};

}  // namespace client
