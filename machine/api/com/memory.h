// Memory and strings that the component runtime allocates and the caller frees: task memory with
// CoTaskMemFree, system strings with SysFreeString.
#pragma once

#include <string_view>
#include <type_traits>

#include "base/utf.h"
#include "machine/journal/emulated_pc.h"

namespace machine {

// Zeroed task memory for `count` records.
template <typename Record>
Record* LendRecords(EmulatedPc& pc, const std::string& kind, size_t count) {
    static_assert(std::is_trivially_copyable_v<Record>);
    return static_cast<Record*>(pc.ledger.Lend("CoTaskMem", kind, count * sizeof(Record)));
}

// A copy with terminator, in task memory.
LPWSTR LendText(EmulatedPc& pc, const std::string& kind, std::string_view text);

// A system string; the ledger lists it as "BSTR".
BSTR LendSystemString(EmulatedPc& pc, WideView text);

}  // namespace machine
