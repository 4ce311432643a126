// Scripts: one operation a line with its arguments, separated by blanks; from "#" to the end of the line is a
// comment.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "tools/kestova/operations/operations.h"
#include "tools/kestova/pc/opened_pc.h"

struct PlannedCall {
    const Operation* operation = nullptr;
    Values arguments;
};

// What opening a PC for them must allow.
Access AccessFor(const Operation& operation);
Access AccessFor(const std::vector<PlannedCall>& calls);

// The call in a line of a script that has one. Throws WrongUse.
PlannedCall ReadCall(const std::string& line);

// Parses the whole script, of at most 1 MiB; nothing runs before. Throws WrongUse with `name` and the line.
std::vector<PlannedCall> ReadScript(std::istream& script, const std::string& name);

// The script of that file; "-" is standard input. Throws WrongUse.
std::vector<PlannedCall> ReadScriptFile(const std::string& file);
