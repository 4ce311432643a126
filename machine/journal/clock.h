// The clock of the emulated PC and its scheduled actions. Waiting advances the clock; nothing really waits.
#pragma once

#include <functional>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Runs the action when the clock has advanced by that time.
void Schedule(EmulatedPc& pc, uint64_t milliseconds, std::function<void(EmulatedPc&)> action);

// Advances the clock and runs the actions that become due, in order.
void AdvanceClock(EmulatedPc& pc, uint64_t milliseconds);

}  // namespace machine
