// Reports and operations for people.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/common/json.h"
#include "tools/kestova/operations/operations.h"

// "GetDriveLetter(0, 2) = C: its letter", the outputs below it, and the trace before it when there is one.
std::string ReportText(const Operation& operation, const Json& report);

// The trace of a report, a line an entry; empty without one.
std::string TraceText(const Json& report);

// An operation with its arguments, and its results in words.
std::string OperationText(const Operation& operation);

// The same as JSON: {"operation", "summary", "parameters", "results", "otherwise", "changesPc"}.
Json OperationJson(const Operation& operation);

// The result codes of an operation in words, a line each.
std::string ResultsText(const Operation& operation, const std::string& indent);
