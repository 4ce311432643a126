// Scripts: one operation a line with its arguments, separated by blanks; from "#" to the end of the line is a
// comment.
#pragma once

#include <istream>
#include <string>
#include <vector>

#include "tools/kestova/operations/operations.h"

struct PlannedCall {
    const Operation* operation = nullptr;
    Values arguments;
};

// Parses the whole script, of at most 1 MiB; nothing runs before. Throws WrongUse with `name` and the line.
std::vector<PlannedCall> ReadScript(std::istream& script, const std::string& name);

// The script of that file; "-" is standard input. Throws WrongUse.
std::vector<PlannedCall> ReadScriptFile(const std::string& file);
