// The operations of the library that change nothing, not even for the time that they take, with arguments
// that make sense.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

struct AskedOperation {
    const Operation* operation;  // never null
    std::vector<std::string> words;
    Values arguments;
};

const std::vector<AskedOperation>& AskedOperations();

// The others, which change the first internal disk or write to X:, by name.
std::vector<std::string> NotAskedOperations();

// The result and the outputs: "1, letter \"E\"".
std::string AnswerWords(const OperationReport& report);
