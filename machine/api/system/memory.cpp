// Fixed blocks of the global heap; the ledger lists them as "GlobalAlloc".

#include <cstring>

#include "machine/api/call/call.h"

using namespace machine;

namespace {

constexpr SIZE_T largestBlock = SIZE_T{1} << 30;
constexpr int unusedByte = 0xCD;

}  // namespace

// Null with error 8 for more than a gigabyte, with error 87 for a movable block, since GlobalLock is not
// emulated. Memory not requested as zeroed is filled with a pattern. The caller frees it with GlobalFree.
extern "C" HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T bytes) {
    return Answer<HGLOBAL>("GlobalAlloc", {Hex(flags), std::to_string(bytes)}, [&](EmulatedPc& pc) {
        if ((flags & GMEM_MOVEABLE) != 0)
            return Failure<HGLOBAL>(pc, FailsWith::NullAndLastError, ERROR_INVALID_PARAMETER);
        if (bytes > largestBlock)
            return Failure<HGLOBAL>(pc, FailsWith::NullAndLastError, ERROR_NOT_ENOUGH_MEMORY);
        void* const block = pc.ledger.Lend("GlobalAlloc", "GlobalAlloc", bytes);
        if ((flags & GMEM_ZEROINIT) == 0) std::memset(block, unusedByte, bytes);
        return block;
    });
}

// Null on success and for null; the block and error 6 if it was not allocated here.
extern "C" HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
    const Turn turn;
    EmulatedPc& pc = EmulatedPc::Current();
    if (pc.ledger.Return("GlobalAlloc", block)) return nullptr;
    pc.lastError = ERROR_INVALID_HANDLE;
    return block;
}
