// What a test finds on loan when it is over.
#pragma once

#include <string>

#include "machine/journal/ledger.h"

// What an initialised object leaves on loan by design as long as it lives: interfaces that the volume layer
// overwrites, strings of disks that nobody frees; and what a failing close could not give back, or a
// call that failed after its effect had taken. Fails the running test for anything else.
void ExpectOnlyKeptLeftovers(const machine::Ledger& ledger, const std::string& failingCall = "");
