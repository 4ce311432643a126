// The clock of the emulated PC, and what happens at its hours. It goes on when somebody waits; nobody really
// does.
#pragma once

#include <functional>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Does the action when the clock has gone on by that much.
void Schedule(EmulatedPc& pc, uint64_t milliseconds, std::function<void(EmulatedPc&)> action);

// Lets the time pass. What was scheduled for it happens at its hour, in order.
void AdvanceClock(EmulatedPc& pc, uint64_t milliseconds);

}  // namespace machine
