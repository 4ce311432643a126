// Waiting: the clock of the emulated PC goes on, nobody waits.

#include "machine/core/emulated_pc.h"

extern "C" void WINAPI Sleep(DWORD milliseconds) {
    machine::EmulatedPc& pc = machine::EmulatedPc::Current();
    pc.clockMilliseconds += milliseconds;
    pc.journal.Add(machine::CallRecord{"Sleep", {std::to_string(milliseconds)}, ""});
}
