// Handles of one kind: maps each to its object and keeps a ledger entry while it is open.
#pragma once

#include <algorithm>
#include <map>
#include <utility>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Allocates the handle values for all tables, so that no value is used twice.
struct HandleValues {
    uintptr_t next = 0x100;
};

// `Object::kind` is the name of its handles in the ledger: `static constexpr const char* kind`. A table is
// a State of the PC, and its members are passed that PC.
template <typename Object>
class HandleTable {
  public:
    static HandleTable& Of(EmulatedPc& pc) { return pc.State<HandleTable>(); }

    // The caller closes the handle.
    void* Open(EmulatedPc& pc, Object object) {
        uintptr_t& next = pc.State<HandleValues>().next;
        void* const handle = reinterpret_cast<void*>(next);
        next += 4;
        open_.emplace(handle, std::move(object));
        pc.ledger.Take(Object::kind);
        return handle;
    }

    // Null if the handle is not open.
    Object* Find(const void* handle) {
        const auto found = open_.find(const_cast<void*>(handle));
        return found != open_.end() ? &found->second : nullptr;
    }

    // Whether any open object satisfies the predicate.
    template <typename Predicate>
    bool Any(Predicate predicate) const {
        return std::any_of(open_.begin(), open_.end(),
                           [&](const auto& entry) { return predicate(entry.second); });
    }

    // False if the handle is not open, which is a violation in the ledger.
    bool Close(EmulatedPc& pc, void* handle) {
        if (open_.erase(handle) == 0) {
            pc.ledger.Violation(std::string(Object::kind) + " closed that is not open");
            return false;
        }
        pc.ledger.GiveBack(Object::kind);
        return true;
    }

  private:
    std::map<void*, Object> open_;
};

}  // namespace machine
