#include "machine/journal/journal.h"

namespace machine {

namespace {

template <typename Kind>
std::vector<Kind> Only(const std::vector<JournalEntry>& entries) {
    std::vector<Kind> found;
    for (const JournalEntry& entry : entries) {
        if (const Kind* kind = std::get_if<Kind>(&entry)) found.push_back(*kind);
    }
    return found;
}

}  // namespace

std::vector<CallRecord> Journal::Calls() const {
    return Only<CallRecord>(entries_);
}

std::vector<CallRecord> Journal::Calls(const std::string& name) const {
    std::vector<CallRecord> calls = Calls();
    std::erase_if(calls, [&](const CallRecord& record) { return record.call != name; });
    return calls;
}

std::vector<LogEntry> Journal::Records() const {
    return Only<LogEntry>(entries_);
}

std::vector<std::vector<std::string>> Journal::Unshown(const std::string& call) const {
    const auto arguments = unshown_.find(call);
    return arguments != unshown_.end() ? arguments->second : std::vector<std::vector<std::string>>();
}

}  // namespace machine
