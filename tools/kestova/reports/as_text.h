// Every report as text for people, ended by a line feed.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "machine/calls/call_table.h"
#include "machine/facts/machines.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/descriptions/comparison.h"
#include "tools/kestova/descriptions/validation.h"
#include "tools/kestova/reports/files.h"
#include "tools/kestova/reports/letters.h"
#include "tools/kestova/reports/recovery.h"
#include "tools/kestova/reports/switch_check.h"
#include "tools/kestova/reports/table_repair.h"
#include "tools/kestova/reports/undo.h"

// Remark and problem are left out: they belong on standard error.
std::string AsText(const LettersReport& letters);
std::string AsText(const FilesReport& report);
std::string AsText(const SwitchReport& report);

// "GetDriveLetter(0, 2) = C: its letter", the outputs below it, and the trace before it when there is one.
std::string AsText(const OperationReport& report);
std::string AsText(const RecoveryReport& report);
std::string AsText(const TableRepairReport& report);
std::string AsText(const std::vector<ValidationReport>& reports);
std::string AsText(const ComparisonReport& report);
std::string AsText(const UndoReport& report);
// The line that names a backup.
std::string BackupText(const std::string& file);

// Each operation with its arguments, and its results in words.
std::string AsText(const std::vector<Operation>& operations);
std::string AsText(const std::vector<machine::NamedMachine>& machines);
std::string AsText(std::span<const machine::CallInfo> calls);

// "Held in the end:", and a line for each kind with its number.
std::string LedgerText(const std::map<std::string, int>& ledger);

// A line for each entry; empty without a trace.
std::string TraceText(const OperationReport& report);

// The result codes of an operation in words, a line each.
std::string ResultsText(const Operation& operation, const std::string& indent, size_t columns = noLimit);
