// Sleeping and waiting, which advance the clock of the emulated PC without really waiting.

#include "machine/api/call/call.h"
#include "machine/api/handles/file_handles.h"
#include "machine/api/handles/processes.h"
#include "machine/journal/clock.h"

using namespace machine;

extern "C" void WINAPI Sleep(DWORD milliseconds) {
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    pc.journal.Add(CallRecord{"Sleep", {std::to_string(milliseconds)}, ""});
    AdvanceClock(pc, milliseconds);
}

// Waits for a process. 0: it has ended; 258 (WAIT_TIMEOUT): it is still running after that time; 0xFFFFFFFF
// (WAIT_FAILED) with error 6 for any other handle.
extern "C" DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    std::vector<std::string> arguments = {NameOf(EmulatedPc::Current(), handle),
                                          std::to_string(milliseconds)};
    return Answer<DWORD>("WaitForSingleObject", std::move(arguments), [&](EmulatedPc& pc) -> DWORD {
        const Process* const process = Processes::Of(pc).Find(handle);
        if (process == nullptr) {
            pc.lastError = ERROR_INVALID_HANDLE;
            return WAIT_FAILED;
        }
        const uint64_t now = pc.clockMilliseconds;
        const uint64_t left = process->endsAt > now ? process->endsAt - now : 0;
        const bool ends = left <= milliseconds;
        AdvanceClock(pc, ends ? left : milliseconds);
        return ends ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
    });
}
