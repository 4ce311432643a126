// The last error of the calling thread. These calls are not written to the journal.

#include "machine/journal/emulated_pc.h"

extern "C" DWORD WINAPI GetLastError() {
    return machine::EmulatedPc::Current().lastError;
}

extern "C" void WINAPI SetLastError(DWORD error) {
    machine::EmulatedPc::Current().lastError = error;
}
