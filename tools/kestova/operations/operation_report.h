// The report of one call of an operation.
#pragma once

#include <optional>
#include <vector>

#include "logging/logging.h"
#include "tools/kestova/common/trace.h"
#include "tools/kestova/operations/operations.h"

struct OperationReport {
    const Operation* operation;  // never null
    Values arguments = {};
    Value result = {};
    Values outputs = {};
    std::vector<LogEntry> log = {};
    std::optional<Trace> trace = {};
    std::string unwritten = {};  // why the change is not on the disk image; empty if it is, or there is none
};
