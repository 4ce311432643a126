// The columns of the partition table that `status` shows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/kestova/common/fitted_table.h"
#include "tools/kestova/picture/pieces.h"

struct Column {
    std::string_view name;  // as --columns has it
    TableColumn look;
    std::string_view words;  // for help
    bool isUsual;            // shown without --columns
    // `inBytes`: sizes are not rounded.
    Cell (*cell)(const PartitionReport& partition,
                 bool inBytes);  // What is in the column of free space; null: nothing.
    std::string (*free)(const Piece& piece, bool inBytes);
};

const std::vector<Column>& Columns();

// Those of a list such as "number,size". Throws WrongUse with the names for an unknown one, and for none.
std::vector<const Column*> ColumnsOf(const std::string& list);

// A piece's row of the table.
std::vector<Cell> CellsOf(const Piece& piece, const std::vector<const Column*>& columns, bool inBytes);

// A size as the user wants it.
std::string SizeWords(int64_t bytes, bool inBytes);

// Each name with its words, for help.
std::string ColumnsHelp(size_t columns);
