// The PC that answers the platform calls: the facts and the records of what happened.
#pragma once

#include <any>
#include <mutex>
#include <string>
#include <typeindex>
#include <unordered_map>

#include "machine/facts/pc.h"
#include "machine/journal/fault_plan.h"
#include "machine/journal/journal.h"
#include "machine/journal/ledger.h"

namespace machine {

// The last error of the calling thread.
class LastError {
  public:
    LastError& operator=(uint32_t code) {
        ofThread_ = code;
        return *this;
    }
    operator uint32_t() const { return ofThread_; }

  private:
    static thread_local uint32_t ofThread_;
};

// The turn of one thread: as long as it lasts, no other thread uses the PC. A thread can take several.
class Turn {
  public:
    Turn() : alone_(mutex_) {}

  private:
    static std::recursive_mutex mutex_;
    std::scoped_lock<std::recursive_mutex> alone_;
};

// While it exists, it answers every platform call of the process and stores the library's log records. Only
// one may exist at a time. Several threads can call it: every call takes its turn. Its parts are public:
// tests inspect them and change them between operations.
class EmulatedPc final : private ILogSink {
  public:
    explicit EmulatedPc(Pc given);
    ~EmulatedPc();
    EmulatedPc(const EmulatedPc&) = delete;
    EmulatedPc& operator=(const EmulatedPc&) = delete;

    // The existing PC. Ends the process with a message if there is none.
    static EmulatedPc& Current();

    Pc facts;
    FaultPlan faults;
    Journal journal;
    Ledger ledger;
    uint64_t clockMilliseconds = 0;  // advanced by Sleep and timeouts
    LastError lastError;

    // The state of one area of the platform (open handles, COM objects): one object of each type, created
    // on first use.
    template <typename T>
    T& State() {
        std::any& state = states_[std::type_index(typeid(T))];
        if (!state.has_value()) state = std::make_shared<T>();
        return *std::any_cast<std::shared_ptr<T>&>(state);
    }

  private:
    void Write(const LogEntry& entry) override {
        const Turn turn;
        if (journal.keepsSuccesses) journal.Add(entry);
    }

    // Unordered, because type_info::before is inconsistent on mingw-w64 for types in unnamed namespaces.
    std::unordered_map<std::type_index, std::any> states_;
};

}  // namespace machine
