// One rule of a fault plan: which call fails, when, and with which code.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace machine {

// In place of a name: a rule for the calls of all names, counted together. Calls that cannot fail are counted
// and answer as usual.
inline constexpr const char* anyCall = "*";

struct FaultRule {
    std::string call;          // the published name: "CreateFileW", "IVdsAdvancedDisk::ChangeAttributes"
    uint32_t nth = 0;          // which call of that name fails, from 1; 0: every call
    bool onwards = false;      // and all later ones
    bool afterEffect = false;  // after its work; matters to calls that change the PC and to success codes
    uint32_t code = 0;         // a result code, a last error, or the returned value itself
    bool withOutputs = false;  // after its work, with its outputs; the caller releases what they hold
    // Only calls with that first argument, as the journal has it: of all disks "disk 1"; empty: whatever it
    // is.
    std::optional<std::string> argument = {};
    std::optional<uint32_t> count = {};  // of an enumerator's Next: the number that it reports

    bool operator==(const FaultRule&) const = default;
};

}  // namespace machine
