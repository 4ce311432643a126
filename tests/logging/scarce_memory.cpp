#include "tests/logging/scarce_memory.h"

#include <cstdlib>
#include <new>

namespace {

// Of this thread alone: other threads of the test program have what they need.
thread_local int untilFailure = 0;  // 0: all succeed
thread_local bool onlyOnce = true;
thread_local bool failed = false;

bool IsToFail() {
    if (untilFailure == 0 || --untilFailure > 0) return false;
    untilFailure = onlyOnce ? 0 : 1;
    failed = true;
    return true;
}

}  // namespace

ScarceMemory::ScarceMemory(int number, Lack lack) noexcept {
    untilFailure = number;
    onlyOnce = lack == Lack::Once;
    failed = false;
}

ScarceMemory::~ScarceMemory() {
    untilFailure = 0;
}

bool ScarceMemory::HasFailed() const noexcept {
    return failed;
}

void* operator new(size_t size) {
    void* const memory = IsToFail() ? nullptr : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
