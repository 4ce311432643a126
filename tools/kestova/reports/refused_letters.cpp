#include "tools/kestova/reports/refused_letters.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace {

constexpr const char* success = "0x00000000";

int64_t OffsetOf(const machine::CallRecord& call) {
    return std::stoll(call.arguments.at(1));
}

}  // namespace

// The library asks for the letter of a partition; where there is none it looks for a free one and assigns
// that. It letters a partition once to look into it, and a second time when that is the one it was looking
// for.
std::set<int64_t> RefusedLetters(const Trace& trace) {
    std::set<int64_t> wanted;
    std::set<int64_t> lettered;
    const machine::CallRecord* previous = nullptr;
    for (const machine::JournalEntry& entry : trace) {
        const auto* const call = std::get_if<machine::CallRecord>(&entry);
        if (call == nullptr) continue;
        if (call->call == "GetLogicalDriveStringsW" && previous != nullptr &&
            previous->call == "IVdsAdvancedDisk::GetDriveLetter") {
            wanted.insert(OffsetOf(*previous));
        } else if (call->call == "IVdsAdvancedDisk::AssignDriveLetter" && call->result == success) {
            lettered.insert(OffsetOf(*call));
        }
        previous = call;
    }
    std::set<int64_t> refused;
    std::ranges::set_difference(wanted, lettered, std::inserter(refused, refused.end()));
    return refused;
}
