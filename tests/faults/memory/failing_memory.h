// Memory that runs out for the library: the operator new of this program, which an object makes fail.
#pragma once

#include <cstdint>
#include <vector>

// In its scope the allocations of the library are distinguished from those of the emulated PC and of what
// calls the library, which always succeed. The object must be made in a function that calls the library,
// directly or not. Only one may exist at a time.
class FailingMemory {
  public:
    // No allocation fails; Places() lists those of the library.
    FailingMemory();
    // The allocation at that place fails, and with `onwards` every later one of the library.
    FailingMemory(uint32_t place, bool onwards);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    // Ends it before its scope does.
    void Stop();

    // The library's allocations: their numbers among all of the program since the object was made, from 1.
    const std::vector<uint32_t>& Places() const { return places_; }
    // Whether an allocation has failed.
    bool HasFailed() const { return hasFailed_; }
    // Whether the library's module was current at one of the library's allocations.
    bool SawCurrentModule() const { return sawCurrentModule_; }

    // Whether the next allocation fails; called by operator new.
    bool Fails();

  private:
    bool IsOfLibrary() const;

    uint32_t place_ = 0;
    bool onwards_ = false;
    uint32_t count_ = 0;
    bool hasFailed_ = false;
    bool sawCurrentModule_ = false;
    std::vector<uint32_t> places_;
};
