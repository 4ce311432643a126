// The report of one call of an operation.
#pragma once

#include <string>
#include <vector>

#include "logging/logging.h"
#include "tools/kestova/common/trace.h"
#include "tools/kestova/operations/operations.h"

// Why an operation was refused, by the condition that it needs.
struct RefusalReason {
    std::string code;
    std::string text;
};

struct OperationReport {
    const Operation* operation;  // never null
    Values arguments = {};
    Value result = {};
    Values outputs = {};
    std::vector<LogEntry> log = {};
    Trace trace = {};
    bool showsTrace = false;
    std::string unwritten = {};  // why the change is not on the disk image; empty if it is, or there is none
    std::vector<std::string> backups = {};    // with which the change of images can be taken back
    std::string problem = {};                 // why a question could not be answered; empty if it was
    std::vector<RefusalReason> reasons = {};  // of a switch that was refused
};
