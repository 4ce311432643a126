// What a script of operations finds on one of the PCs of a survey.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "logging/logging.h"
#include "tools/kestova/operations/operation_report.h"
#include "tools/kestova/operations/script.h"
#include "tools/kestova/pc/opened_pc.h"

struct SurveyedPc {
    std::string pc;  // the file, as it was named
    std::string name = {};
    std::optional<int> status =
        {};  // with which `run` ends on this PC; nothing if its worker ended without an answer
    std::vector<OperationReport> operations = {};
    std::vector<LogEntry> records = {};  // those that mark errors
    std::optional<std::vector<std::string>> changes = {};
    std::string error = {};  // why there is no answer, or not all of it; empty if there is
};

struct SurveyWork {
    PcChoice choice;  // for every PC, without the PC itself
    std::vector<PlannedCall> calls;
    bool initialize = true;
};

// Opens the PC in the file, gives up what `run` gives up, and runs the script on it: for a process that ends
// then.
SurveyedPc Survey(const std::string& file, const SurveyWork& work);
