// A model of the PC in the words of the library's public header: what each operation may return and change,
// given the facts. It knows the internal disk only from the library, which the header does not explain.
#pragma once

#include <string>

#include "machine/facts/pc.h"
#include "tools/kestova/operations/operations.h"

namespace randomly {

struct Observation {
    const Operation& operation;
    const Values& arguments;
    const Value& result;
    const Values& outputs;
    int internalDisk;  // GetFirstInternalDriveNumber before it
    const machine::Pc& before;
    const machine::Pc& after;
};

// What contradicts the header; empty if nothing does.
std::string Contradiction(const Observation& seen);

}  // namespace randomly
