// The report of one call of an operation.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "logging/logging.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/pc/trace.h"

// What a report adds to a result: why it was refused, by the condition that it needs, or what the PC will not
// do afterwards.
struct Finding {
    std::string code;
    std::string text;
};

struct OperationReport {
    const Operation* operation;  // never null
    Values arguments = {};
    Value result = {};
    const char* outcome = nullptr;  // which of the outcomes with this result it was; null: it has only one
    Values outputs = {};
    // The change before which it was stopped, so that result and outputs mean nothing; nothing if it came to
    // its end.
    std::optional<std::string> stoppedBefore = {};
    std::vector<LogEntry> log = {};
    Trace trace = {};
    bool showsTrace = false;
    std::string unwritten = {};  // why the change is not on the disk image; empty if it is, or there is none
    std::vector<std::string> backups = {};  // with which the change of images can be taken back
    std::string problem = {};               // why a question could not be answered; empty if it was
    std::vector<Finding> reasons = {};      // of a switch that was refused
    std::optional<std::vector<std::string>> changes = {};  // of the PC; nothing if they are unknown
    std::vector<Finding> remarks = {};                     // what keeps the PC from starting afterwards
};

// The level of a log record that marks an error.
inline constexpr int errorLevel = 1;

// Failure if its result is one or its question could not be answered, else Done.
int StatusOf(const OperationReport& report);

// The result in words: the outcome, where several have this result; empty if there are no words for it.
std::string ResultWords(const OperationReport& report);

// "would first delete …": what an operation that was stopped has come to.
std::string StopWords(const OperationReport& report);
