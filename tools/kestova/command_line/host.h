// What every command that asks the library has in common: the log, the PC, the object from its making to its
// destruction, and what is said and saved afterwards.
#pragma once

#include <functional>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/operations/session.h"

struct Work {
    Access access = Access::Ask;
    bool initialize = true;
    bool showLife = false;                     // report construction, Initialize and destruction too
    bool showChanges = false;                  // also without --dry-run
    std::string script = {};                   // the file that the work was read from
    std::function<int(Session& session)> run;  // answers the exit status
};

// Answers what `run` answered. Throws WrongUse, UnreadablePc, Failed.
int Host(const CommandLine& line, const Work& work);

// Writes a report to standard output, in JSON as one line.
void Show(const CommandLine& line, const Operation& operation, const Json& report);
