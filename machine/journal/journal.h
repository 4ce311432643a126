// The journal: platform calls with arguments and results, and the library's log records between them, in
// order.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "logging/logging.h"

namespace machine {

struct CallRecord {
    std::string call;                    // the published name
    std::vector<std::string> arguments;  // the significant ones, as text
    std::string result;
    bool injected = false;  // the result comes from a fault rule
    // What a call that did not simply succeed reports: its HRESULT or status, else the last error. 0 for a
    // success, and for calls that return a value.
    uint32_t code = 0;
};

using JournalEntry = std::variant<CallRecord, LogEntry>;

class Journal {
  public:
    void Add(JournalEntry entry) { entries_.push_back(std::move(entry)); }
    void Clear() { Take(); }
    // Everything since the last Take or Clear, which the journal then no longer holds.
    std::vector<JournalEntry> Take() {
        unshown_.clear();
        return std::exchange(entries_, {});
    }
    const std::vector<JournalEntry>& Entries() const { return entries_; }
    // Only the calls; only those of one name; only the log records.
    std::vector<CallRecord> Calls() const;
    std::vector<CallRecord> Calls(const std::string& name) const;
    std::vector<LogEntry> Records() const;
    // What the entries leave out, because their text is what people read and scripts parse: arguments that no
    // answer depends on (sizes, flags, credentials, optional records), and the order of releases. One element
    // for each call of that name, in order; none for a call of which the entries show everything.
    // "IUnknown::Release" has the interface, and the call before it. Only tests ask for it.
    std::vector<std::vector<std::string>> Unshown(const std::string& call) const;
    void AddUnshown(const std::string& call, std::vector<std::string> arguments) {
        unshown_[call].push_back(std::move(arguments));
    }

    // Whether the journal has log records and calls that succeeded, and what the entries leave out. Who will
    // not ask for them saves the time.
    bool keepsSuccesses = true;
    void LeaveOutUnshown() { keepsUnshown_ = false; }
    bool KeepsUnshown() const { return keepsUnshown_; }

  private:
    std::vector<JournalEntry> entries_;
    bool keepsUnshown_ = true;
    std::map<std::string, std::vector<std::vector<std::string>>> unshown_;
};

}  // namespace machine
