// Everything that happened, in order: the platform calls with arguments and result, and the log records of
// the library between them.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "logging/logging.h"

namespace machine {

struct CallRecord {
    std::string call;                    // the published name
    std::vector<std::string> arguments;  // those that tell something, as text
    std::string result;
    bool injected = false;  // a fault rule gave the result
};

using JournalEntry = std::variant<CallRecord, LogEntry>;

class Journal {
  public:
    void Add(JournalEntry entry) { entries_.push_back(std::move(entry)); }
    void Clear() { entries_.clear(); }
    const std::vector<JournalEntry>& Entries() const { return entries_; }
    // The calls alone, those of one name, the records alone.
    std::vector<CallRecord> Calls() const;
    std::vector<CallRecord> Calls(const std::string& name) const;
    std::vector<LogEntry> Records() const;

  private:
    std::vector<JournalEntry> entries_;
};

}  // namespace machine
