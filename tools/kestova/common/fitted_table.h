// A table for a terminal: it fits its width, and marks what matters with colour.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/common/terminal.h"

// What a cell means to the reader.
enum class Meant { Plain, Chosen, Good, Barring };

struct Cell {
    std::string text = {};
    Meant meant = Meant::Plain;
};

// How far a column may be cut, with "…"; numbers are not cut.
struct TableColumn {
    std::string title;
    size_t least = noLimit;  // columns of the terminal; noLimit: not cut
};

// The text in its colour, if the terminal shows any.
std::string Coloured(const Cell& cell, const Terminal& terminal);

// The title row and the rows, each behind two blanks. Where they do not fit, the last column is
// wrapped and the widest other ones are cut. Control characters are shown as Printable does.
std::string FittedTable(const std::vector<TableColumn>& columns, std::vector<std::vector<Cell>> rows,
                        const Terminal& terminal);

// The least width that such columns can be cut to.
size_t LeastWidth(const std::vector<TableColumn>& columns, const std::vector<std::vector<Cell>>& rows);
