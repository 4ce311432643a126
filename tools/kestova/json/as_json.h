// Every report as JSON: an object on one line, ended by a line feed; of a list, a line for each element. The
// keys are a contract (docs/command-line.md). nlohmann-json is included in the source alone.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "machine/calls/call_table.h"
#include "machine/facts/machines.h"
#include "tools/kestova/conformance/conformance.h"
#include "tools/kestova/descriptions/comparison.h"
#include "tools/kestova/descriptions/validation.h"
#include "tools/kestova/reports/files.h"
#include "tools/kestova/reports/letters.h"
#include "tools/kestova/reports/recovery.h"
#include "tools/kestova/reports/status.h"
#include "tools/kestova/reports/switch_check.h"
#include "tools/kestova/reports/table_repair.h"
#include "tools/kestova/reports/undo.h"
#include "tools/kestova/survey/surveyed_pc.h"

std::string AsJson(const StatusReport& status);
std::string AsJson(const LettersReport& letters);
std::string AsJson(const FilesReport& report);
std::string AsJson(const SwitchReport& report);
std::string AsJson(const OperationReport& report);
std::string AsJson(const RecoveryReport& report);
std::string AsJson(const TableRepairReport& report);
std::string AsJson(const UndoReport& report);
std::string AsJson(const SurveyedPc& surveyed);
std::string AsJson(const std::vector<ValidationReport>& reports);
std::string AsJson(const ComparisonReport& report);
std::string AsJson(const ConformanceReport& report);
// {"error", "status"}: why the program ends with that status. In ASCII.
std::string ErrorAsJson(const std::string& message, int status);

// What is known only when everything is over.
struct EndReport {
    std::optional<std::map<std::string, int>> ledger =
        {};                               // the number of each kind; nothing if nobody asked
    std::vector<FaultCount> faults = {};  // of the choice
};

// The line of an object with the keys "faultsMet", "remarks" and "ledger", as far as there is something.
std::string WithEnd(const std::string& line, const EndReport& end);
std::string AsJson(const std::vector<Operation>& operations);
std::string AsJson(const std::vector<machine::NamedMachine>& machines);
std::string AsJson(std::span<const machine::CallInfo> calls);
