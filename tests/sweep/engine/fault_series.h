// The faults of a sweep: which calls of an undisturbed run are disturbed, and how.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "machine/calls/fault_rule.h"
#include "machine/journal/journal.h"

namespace sweep {

enum class Way {
    None,                // undisturbed
    Fails,               // with a documented code, without an effect
    FailsOnwards,        // and every later call of that name
    AllCallsFail,        // that call and every later one of any name
    TwoFail,             // that call, and another while the operation rolls back
    FailsAfterEffect,    // the call does its work and reports a failure
    TwoFailAfterEffect,  // and another call while the operation rolls back
    OtherSuccess,        // the call does its work and returns another success code
    EmptySuccess,        // S_FALSE, or another success code, without outputs
    SuccessNothing,      // S_OK without an effect and without outputs
    OtherValue,          // of a call that cannot fail, or that answers by a code of failure
};

// As the tables name it.
const char* NameOf(Way way);

struct Disturbance {
    std::string call;  // the published name of the first, "*" for all of them, empty for none
    Way way = Way::None;
    std::vector<machine::FaultRule> rules = {};
};

// The faults as options of the tool; what the tool has no option for is in words.
std::string ToText(const Disturbance& disturbance);

// The names of the calls of a run: those before the operation, which are only counted, and its own.
struct CallNames {
    const std::vector<std::string>& preparation;
    const std::vector<std::string>& operation;
};

// Every disturbance of the calls of an undisturbed run.
std::vector<Disturbance> AllDisturbances(const CallNames& calls);

// A disturbance that made the operation roll back, with a second fault in each later call of that run.
// `first` is the position of the call of the operation that failed.
std::vector<Disturbance> FaultsOfRollBack(const Disturbance& disturbance, const CallNames& calls,
                                          size_t first);

}  // namespace sweep
