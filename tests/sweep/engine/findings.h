// What is checked of every run, and what the checks found.
#pragma once

#include <string>
#include <vector>

#include "tests/sweep/engine/run.h"

namespace sweep {

// A row of one of the tables that the sweep is compared with. Its fields are those of the table.
using Row = std::vector<std::string>;

// What the sweep collects: each row must be in the table of that name, and in a whole sweep each row of the
// table must be found.
enum class Table {
    Breaches,        // rule, operation, call, way, what
    ClosingRecords,  // operation, result, record
    UnnamedCalls,    // call, record before it, record behind it
};
inline constexpr Table allTables[] = {Table::Breaches, Table::ClosingRecords, Table::UnnamedCalls};

struct Finding {
    Table table;
    Row row;
};

// The same PC without disturbance.
struct Reference {
    const machine::Pc& before;
    const Outcome& undisturbed;   // the run of the same task
    const machine::Pc& returned;  // what SetSystemActive alone makes of the PC
    Value internalDisk;           // what GetFirstInternalDriveNumber returns
};

// Checks one run, the undisturbed one too.
std::vector<Finding> Check(const Task& task, const Reference& reference, const Disturbance& disturbance,
                           const Outcome& outcome);

// The operation changed something, failed, and went back.
bool RolledBack(const Task& task, const Outcome& outcome);

}  // namespace sweep
