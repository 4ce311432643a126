#include "machine/api/files/redirection.h"

#include "machine/api/call/outcome.h"

using namespace machine;

namespace {

struct Redirection {
    static constexpr const char* kind = "file-system redirection";
    bool off = false;
};

const HANDLE thisProcess = reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1));

}  // namespace

namespace machine {

VolumeFiles FilesOf(EmulatedPc& pc) {
    return VolumeFiles(pc.facts, pc.facts.system.emulates32Bit && !pc.State<Redirection>().off);
}

}  // namespace machine

// The pseudo handle, the same in every process and in no handle table.
extern "C" HANDLE WINAPI GetCurrentProcess() {
    return thisProcess;
}

// Whether this program is a 32-bit one on a 64-bit system. Error 6 for any other process, 87 without an
// output pointer.
extern "C" BOOL WINAPI IsWow64Process(HANDLE process, PBOOL emulated) {
    return Answer<BOOL>("IsWow64Process", {}, [&](EmulatedPc& pc) {
        if (process != thisProcess) return Outcome(pc, ERROR_INVALID_HANDLE);
        if (emulated == nullptr) return Outcome(pc, ERROR_INVALID_PARAMETER);
        *emulated = pc.facts.system.emulates32Bit ? TRUE : FALSE;
        return TRUE;
    });
}

// Disables the redirection and returns its previous state, which the caller passes to
// Wow64RevertWow64FsRedirection. Error 1 in a program without redirection, 87 without an output pointer.
extern "C" BOOL WINAPI Wow64DisableWow64FsRedirection(PVOID* oldState) {
    return Answer<BOOL>("Wow64DisableWow64FsRedirection", {}, [&](EmulatedPc& pc) {
        if (!pc.facts.system.emulates32Bit) return Outcome(pc, ERROR_INVALID_FUNCTION);
        if (oldState == nullptr) return Outcome(pc, ERROR_INVALID_PARAMETER);
        bool& off = pc.State<Redirection>().off;
        *oldState = off ? thisProcess : nullptr;
        off = true;
        pc.ledger.Take(Redirection::kind);
        return TRUE;
    });
}

// Restores a state that Wow64DisableWow64FsRedirection returned. Error 1 in a program without redirection;
// an unmatched call is a violation in the ledger.
extern "C" BOOL WINAPI Wow64RevertWow64FsRedirection(PVOID oldState) {
    return Answer<BOOL>("Wow64RevertWow64FsRedirection", {}, [&](EmulatedPc& pc) {
        if (!pc.facts.system.emulates32Bit) return Outcome(pc, ERROR_INVALID_FUNCTION);
        pc.State<Redirection>().off = oldState != nullptr;
        pc.ledger.GiveBack(Redirection::kind);
        return TRUE;
    });
}
