// The PC that answers the platform's calls: the facts, and what happened to it.
#pragma once

#include <any>
#include <string>
#include <typeindex>
#include <unordered_map>

#include "machine/facts/pc.h"
#include "machine/journal/fault_plan.h"
#include "machine/journal/journal.h"
#include "machine/journal/ledger.h"

namespace machine {

// While it lives it answers every platform call of the process and keeps the log records of the library; one
// at a time. Its parts are open: tests look at them and change them between two operations.
class EmulatedPc final : private ILogSink {
  public:
    explicit EmulatedPc(Pc given);
    ~EmulatedPc();
    EmulatedPc(const EmulatedPc&) = delete;
    EmulatedPc& operator=(const EmulatedPc&) = delete;

    // The PC that lives now. Ends the process with a message when there is none.
    static EmulatedPc& Current();

    Pc facts;
    FaultPlan faults;
    Journal journal;
    Ledger ledger;
    uint64_t clockMilliseconds = 0;  // advanced by Sleep and time-outs; nothing really waits
    uint32_t lastError = 0;

    // What one area of the platform keeps while the PC lives (open handles, COM objects): one object of each
    // type, made on first use.
    template <typename T>
    T& State() {
        std::any& state = states_[std::type_index(typeid(T))];
        if (!state.has_value()) state = std::make_shared<T>();
        return *std::any_cast<std::shared_ptr<T>&>(state);
    }

  private:
    void Write(const LogEntry& entry) override { journal.Add(entry); }

    // Not ordered: type_info::before contradicts itself on mingw-w64 for types of unnamed namespaces.
    std::unordered_map<std::type_index, std::any> states_;
};

}  // namespace machine
