// What is swept: every operation of the tool's table, with arguments, after what has to come before it.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tools/kestova/operations/operations.h"

namespace sweep {

struct Task {
    std::string name;  // the operation with its arguments
    const Operation* operation;
    Values arguments;
    const Operation* before = nullptr;  // called first, undisturbed; null: nothing
};

// Its name; a test with this parameter prints it.
void PrintTo(const Task& task, std::ostream* out);

const std::vector<Task>& Tasks();

// Whether the operation can return that.
bool IsListed(const Operation& operation, const Value& result);

// The four operations that choose what the PC boots.
bool IsSwitch(const Operation& operation);

}  // namespace sweep
