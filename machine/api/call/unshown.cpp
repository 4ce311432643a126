#include "machine/api/call/unshown.h"

#include <map>

namespace machine {

namespace {

struct Unshown {
    std::map<std::string, std::vector<std::vector<std::string>>> calls;
    size_t journalLength = 0;  // at the last of them
};

}  // namespace

void NoteUnshown(const std::string& call, std::vector<std::string> arguments) {
    EmulatedPc& pc = EmulatedPc::Current();
    Unshown& unshown = pc.State<Unshown>();
    // A journal that was emptied is followed, so that a long run needs no more memory than a short one.
    const size_t length = pc.journal.Entries().size();
    if (length < unshown.journalLength) unshown.calls.clear();
    unshown.journalLength = length;
    unshown.calls[call].push_back(std::move(arguments));
}

std::vector<std::vector<std::string>> UnshownArguments(EmulatedPc& pc, const std::string& call) {
    return pc.State<Unshown>().calls[call];
}

}  // namespace machine
