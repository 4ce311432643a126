// One run of an operation on a PC, with or without faults, and all that can be seen of it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "logging/logging.h"
#include "machine/facts/pc.h"
#include "tests/sweep/engine/fault_series.h"
#include "tests/sweep/engine/tasks.h"

namespace sweep {

// Where the first disturbed call of a run was made, and what the library wrote before its next call.
struct Site {
    std::string call;
    size_t position = 0;                  // among the calls, from 0
    std::optional<LogEntry> before = {};  // the last record before it
    std::vector<LogEntry> after = {};     // the records up to the next call
};

struct Outcome {
    Value result = {};
    Values outputs = {};
    std::string thrown = {};                     // what escaped from the operation; empty: nothing
    std::vector<std::string> preparation = {};   // the calls before the operation
    std::vector<std::string> calls = {};         // those of the operation
    std::optional<LogEntry> closingRecord = {};  // the last one; none: the operation wrote nothing
    std::optional<Site> site = {};               // none: no fault met a call
    machine::Pc start = {};                      // after what comes before the operation
    machine::Pc after = {};
    bool moduleStaysCurrent = false;
    // After a switch: the result of SetSystemActive without faults, and the PC that it leaves.
    std::optional<Value> returned = {};
    machine::Pc afterReturn = {};
    // After the object and COM are gone.
    std::map<std::string, int> outstanding = {};
    int disksRead = 0;  // with what comes before and after the operation; only if undisturbed
    std::vector<std::string> violations = {};
};

// Makes and initialises the object, calls what comes before, then the operation, and destroys the object. The
// calls are counted from the start, as the tool counts them.
Outcome Run(const machine::Pc& pc, const Task& task, const Disturbance& disturbance);

}  // namespace sweep
