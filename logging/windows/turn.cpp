#include "logging/windows/turn.h"

// The conversion of descriptors, which windows.h leaves out.
#include <sddl.h>

namespace {

constexpr DWORD longestWait = 2000;  // ms

// Full access for administrators and the system, nothing inherited.
constexpr const WCHAR* access = TEXT("D:P(A;;GA;;;BA)(A;;GA;;;SY)");

HANDLE MakeMutex() {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(access, SDDL_REVISION_1, &descriptor, nullptr))
        return nullptr;
    SECURITY_ATTRIBUTES attributes = {sizeof(attributes), descriptor, FALSE};
    const HANDLE mutex = CreateMutexW(&attributes, FALSE, TEXT("Global\\Kestova.Logging"));
    LocalFree(descriptor);
    return mutex;
}

}  // namespace

Turns::Turns() : mutex_(MakeMutex()), patience_(longestWait) {}

Turns::~Turns() {
    if (mutex_ != nullptr) CloseHandle(mutex_);
}

Turn::Turn(Turns& turns) : held_(nullptr) {
    if (turns.mutex_ == nullptr) return;
    const DWORD answer = WaitForSingleObject(turns.mutex_, turns.patience_);
    if (answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED) held_ = turns.mutex_;
    turns.patience_ = held_ != nullptr ? longestWait : 0;
}

Turn::~Turn() {
    if (held_ != nullptr) ReleaseMutex(held_);
}
