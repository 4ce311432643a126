// The last error: one for the emulated PC, as all its calls are made by one thread. Asking leaves no trace in
// the journal.

#include "machine/journal/emulated_pc.h"

extern "C" DWORD WINAPI GetLastError() {
    return machine::EmulatedPc::Current().lastError;
}

extern "C" void WINAPI SetLastError(DWORD error) {
    machine::EmulatedPc::Current().lastError = error;
}
