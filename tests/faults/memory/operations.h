// Every exported operation, and what it returns if memory runs out in it.
#pragma once

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "manager/kestova.h"

struct Operation {
    const char* name;
    // Calls it; the result, then the outputs, separated by blanks.
    std::string (*call)(Kestova& kestova);
    // That text if memory runs out: one for each step that the result names.
    std::set<std::string> endings;
    // A letter that it should have deleted stays if it fails.
    bool failureLeavesLetter = false;
};

void PrintTo(const Operation& operation, std::ostream* out);

const std::vector<Operation>& Operations();
