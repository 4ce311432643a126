// Reads the lines of the tables that a sweep is compared with.
#pragma once

#include <string>
#include <vector>

#include "tests/sweep/engine/findings.h"

namespace sweep {

struct ExpectedRow {
    Row fields;  // "*" is for every text, "a|b" for a and b
    size_t line = 0;
};

struct TableLine {
    std::string text;
    size_t number = 0;
};

// Both throw std::runtime_error with the path and the line.

// A row in each line.
std::vector<ExpectedRow> ReadRows(const std::string& path, const std::vector<TableLine>& lines);

// The outline of breaches: a reason; below it, indented by a tab, what it explains (rule, operation, what);
// below that, indented by two, what leads there (call, way). Each of the one makes a row with each of the
// other.
std::vector<ExpectedRow> ReadOutline(const std::string& path, const std::vector<TableLine>& lines);

}  // namespace sweep
