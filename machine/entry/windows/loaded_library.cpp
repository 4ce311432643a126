// Windows has loaded the library as it ships; its imports are redirected to the emulated PC.

#include "machine/entry/loaded_library.h"

#include "machine/entry/windows/chosen_calls.h"
#include "machine/entry/windows/import_table.h"

namespace machine {

// The product and the C runtime inside the module share some imports: CloseHandle, GetCurrentProcess,
// GetLastError, SetLastError, Sleep, WaitForSingleObject, WideCharToMultiByte. The emulated PC answers them
// for both and never forwards to Windows: a handle of one may have the same value as a handle of the other,
// so a handle that the product closes twice must never reach Windows. This is safe for the runtime because
// all calls come from one thread and the imports are restored before the module is unloaded. The runtime's
// remaining uses have the same effect either way: it preserves the last error around an access to
// thread-local storage, and names the process by a constant pseudo handle. It closes, waits and sleeps only
// for other threads and contended locks, and converts text only for narrow output, which the product does
// not use.
struct LoadedLibrary::Inside {
    Inside() : imports(GetModuleHandleW(TEXT("Kestova.dll")), AnsweredCalls(), OtherImports::Refuse) {
        ChooseEmulatedPc();
    }
    ~Inside() { ChooseWindows(); }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    ImportTable imports;
};

LoadedLibrary::LoadedLibrary() : inside_(std::make_unique<Inside>()) {}

LoadedLibrary::~LoadedLibrary() = default;

}  // namespace machine
