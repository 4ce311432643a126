// Walks through the platform calls of an operation and fails each of them in every way there is.
#pragma once

#include <functional>
#include <string>

#include "machine/calls/call_table.h"
#include "machine/calls/fault_rule.h"
#include "machine/journal/journal.h"

// Visits one rule after another, of each call in the journal of an undisturbed run that can fail: it fails
// once, from there on for good, after its effect if it changes the PC, and, if it returns an HRESULT, it
// succeeds without an effect. The visitor makes the PC afresh, arms the rule, runs the operation and checks;
// what it finds is reported with the rule. Returns how many rules were visited.
int WalkFaults(const machine::Journal& undisturbed,
               const std::function<void(const machine::FaultRule& rule)>& visit);

// What a real failure of that kind of call returns.
uint32_t FailureCode(machine::FailsWith failsWith);

// The call reports its failure and has had no effect. The operation cannot know about any other.
bool IsHonest(const machine::FaultRule& rule);

// IsHonest, and the next call of that name succeeds again.
bool FailsOnce(const machine::FaultRule& rule);
