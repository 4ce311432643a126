// The folders of the running system and of the host application.

#include <algorithm>

#include "machine/api/call/call.h"

using namespace machine;

// The length. If the buffer is too short, writes nothing and returns the length with the terminator.
extern "C" UINT WINAPI GetWindowsDirectoryW(LPWSTR buffer, UINT size) {
    return Answer<UINT>("GetWindowsDirectoryW", {std::to_string(size)}, [&](EmulatedPc& pc) {
        const WideString folder = ToWide(pc.facts.system.windowsDirectory);
        const UINT length = static_cast<UINT>(folder.size());
        if (buffer == nullptr || size <= length) return length + 1;
        std::copy_n(folder.c_str(), length + 1, buffer);
        return length;
    });
}

// The path of the host application, which is the null module; error 126 for any other. Returns the length;
// in a short buffer the path is truncated and terminated, and the result is the size with error 122.
extern "C" DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size) {
    const std::string which = module == nullptr ? "null" : "<module>";
    return Answer<DWORD>("GetModuleFileNameW", {which, std::to_string(size)}, [&](EmulatedPc& pc) {
        if (module != nullptr) return Failure<DWORD>(pc, FailsWith::ZeroAndLastError, ERROR_MOD_NOT_FOUND);
        const WideString path = ToWide(pc.facts.host.path);
        const DWORD length = static_cast<DWORD>(path.size());
        if (size > length) {
            std::copy_n(path.c_str(), length + 1, buffer);
            return length;
        }
        if (size > 0) {
            std::copy_n(path.c_str(), size - 1, buffer);
            buffer[size - 1] = TEXT('\0');
        }
        pc.lastError = ERROR_INSUFFICIENT_BUFFER;
        return size;
    });
}
