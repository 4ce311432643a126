#include <algorithm>
#include <functional>

#include "machine/entry/windows/answered_calls.h"

namespace machine {

namespace {

constexpr std::string_view calls[] = {
    "AddVectoredExceptionHandler",
    "CreateEventA",
    "CreateSemaphoreA",
    "DeleteCriticalSection",
    "DuplicateHandle",
    "EnterCriticalSection",
    "FreeLibrary",
    "GetCurrentProcessId",
    "GetCurrentThread",
    "GetCurrentThreadId",
    "GetHandleInformation",
    "GetModuleHandleA",
    "GetModuleHandleW",
    "GetProcAddress",
    "GetProcessAffinityMask",
    "GetSystemTimeAsFileTime",
    "GetThreadContext",
    "GetThreadPriority",
    "GetTickCount64",
    "InitializeCriticalSection",
    "IsDBCSLeadByteEx",
    "IsDebuggerPresent",
    "LeaveCriticalSection",
    "LoadLibraryA",
    "LoadLibraryW",
    "MultiByteToWideChar",
    "OpenProcess",
    "OutputDebugStringA",
    "RaiseException",
    "ReleaseSemaphore",
    "RemoveVectoredExceptionHandler",
    "ResetEvent",
    "ResumeThread",
    "RtlCaptureContext",
    "RtlLookupFunctionEntry",
    "RtlUnwindEx",
    "RtlVirtualUnwind",
    "SetEvent",
    "SetProcessAffinityMask",
    "SetThreadContext",
    "SetThreadPriority",
    "SuspendThread",
    "TlsAlloc",
    "TlsGetValue",
    "TlsSetValue",
    "TryEnterCriticalSection",
    "VirtualProtect",
    "VirtualQuery",
    "WaitForMultipleObjects",
    "__C_specific_handler",
};
static_assert(std::ranges::adjacent_find(calls, std::ranges::greater_equal()) == std::end(calls));

}  // namespace

std::span<const std::string_view> RuntimeCalls() {
    return calls;
}

}  // namespace machine
