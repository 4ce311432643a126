// Folds the log of an operation: what the operation itself logged is shown record by record, each call of
// another function that logged its start is one line, and the records of the call are a block of their own.
#pragma once

#include <string>
#include <vector>

#include "logging/logging.h"

// The records of one call of a function, with its own calls folded.
struct LogBlock {
    std::string function = {};
    // Of a folded call: # and a checksum of the levels, the nesting and the values of all its records. The
    // texts are left out, so that a changed text changes no line that folds it.
    std::string name = {};
    std::string text = {};

    bool operator==(const LogBlock&) const = default;
};

struct FoldedLog {
    LogBlock operation;                 // its function is the first that a record names; its name is empty
    std::vector<LogBlock> hidden = {};  // every folded call, at any depth
};

// A folded line shows the most severe level of the function's own records, the values of its last one, and
// the name of the block: 4 > CVDSPartition::SelectPartition {int 1} #1b0c3d52. A call extends from the record
// that says Start to the one that says End. Where there is no end, it ends before the next record of a
// function that it was called from. A record of a function that logged no start is shown where it is.
FoldedLog Fold(const std::vector<LogEntry>& records);
