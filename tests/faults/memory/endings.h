// What each operation may answer if memory runs out in it.
#pragma once

#include <string>

#include "tools/kestova/operations/operations.h"

// The result, then the outputs, separated by blanks. Records of a list are left out: those that were not
// filled stay as they were.
std::string AnswerText(const Value& result, const Values& outputs);

// Whether that is an answer of the operation without memory.
bool IsEnding(const Operation& operation, const Value& result, const Values& outputs);
