// Rows of text in aligned columns.
#pragma once

#include <string>
#include <vector>

namespace client {

// Collects rows; all have the same number of cells. Cells may hold any bytes.
class Table {
public:
    // A table without headings: lines of names and values.
    Table() = default;

    // A table whose first line is `headings`.
    explicit Table(std::vector<std::string> headings);

    // Adds a row at the end.
    void AddRow(std::vector<std::string> cells);

    // The table as lines, each with its line end: cells printable, an empty one as "-", columns two blanks
    // apart and as wide as their longest cell in code points.
    std::string Text() const;

private:
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace client
