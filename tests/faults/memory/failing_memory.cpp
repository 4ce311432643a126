#include "tests/faults/memory/failing_memory.h"

#include <unwind.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "diag/module.h"
#include "tests/faults/memory/functions.h"

namespace {

FailingMemory* failing = nullptr;

struct StackWalk {
    uintptr_t end;  // the frame of the test
    FunctionOwner nearest = FunctionOwner::Other;
};

_Unwind_Reason_Code Visit(_Unwind_Context* frame, void* argument) {
    StackWalk& walk = *static_cast<StackWalk*>(argument);
    if (_Unwind_GetCFA(frame) > walk.end) return _URC_END_OF_STACK;
    walk.nearest = OwnerOf(reinterpret_cast<const void*>(_Unwind_GetIP(frame)));
    return walk.nearest == FunctionOwner::Other ? _URC_NO_REASON : _URC_END_OF_STACK;
}

void* Allocate(size_t size) {
    if (failing != nullptr && failing->Fails()) return nullptr;
    return std::malloc(size > 0 ? size : 1);
}

void* AllocateOrThrow(size_t size) {
    void* const memory = Allocate(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

FailingMemory::FailingMemory() {
    places_.reserve(100'000);
    failing = this;
}

FailingMemory::FailingMemory(uint32_t place, bool onwards) : place_(place), onwards_(onwards) {
    failing = this;
}

FailingMemory::~FailingMemory() {
    Stop();
}

void FailingMemory::Stop() {
    failing = nullptr;
}

bool FailingMemory::Fails() {
    ++count_;
    const bool lists = place_ == 0;
    if (!lists && count_ != place_ && !(onwards_ && count_ > place_)) return false;
    FailingMemory* const self = std::exchange(failing, nullptr);  // the walk may allocate
    const bool isOfLibrary = IsOfLibrary();
    if (isOfLibrary && lists) places_.push_back(count_);
    if (isOfLibrary && ModuleContext::IsCurrent()) sawCurrentModule_ = true;
    hasFailed_ = hasFailed_ || (isOfLibrary && !lists);
    failing = self;
    return isOfLibrary && !lists;
}

bool FailingMemory::IsOfLibrary() const {
    StackWalk walk{reinterpret_cast<uintptr_t>(this)};
    _Unwind_Backtrace(Visit, &walk);
    return walk.nearest == FunctionOwner::Kestova;
}

void* operator new(size_t size) {
    return AllocateOrThrow(size);
}
void* operator new[](size_t size) {
    return AllocateOrThrow(size);
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
