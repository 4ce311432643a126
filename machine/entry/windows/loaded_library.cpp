// Windows has loaded the library as it ships; its imports are redirected to the emulated PC.

#include "machine/entry/loaded_library.h"

#include <stdexcept>

#include "machine/entry/windows/chosen_calls.h"
#include "machine/entry/windows/import_table.h"

namespace machine {

struct LoadedLibrary::Inside {
    explicit Inside(HMODULE library) : imports(library) { ChooseEmulatedPc(); }
    ~Inside() { ChooseWindows(); }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    ImportTable imports;
};

LoadedLibrary::LoadedLibrary() {
    const HMODULE library = GetModuleHandleW(TEXT("Kestova.dll"));
    if (library == nullptr) throw std::runtime_error("Kestova.dll is not loaded");
    inside_ = std::make_unique<Inside>(library);
}

LoadedLibrary::~LoadedLibrary() = default;

}  // namespace machine
