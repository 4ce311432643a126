#include "machine/entry/windows/import_table.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "base/text_case.h"

namespace machine {

namespace {

// Modules whose functions are not platform calls.
constexpr std::string_view otherModules[] = {"LOGGING.DLL", "MSVCRT.DLL"};

struct Import {
    std::string library;
    std::string name;  // its ordinal if imported without a name
    ULONG_PTR* address;
};

template <typename Record>
const Record* At(HMODULE module, ULONG_PTR offset) {
    return reinterpret_cast<const Record*>(reinterpret_cast<const char*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* FirstLibrary(HMODULE module) {
    const auto& dos = *At<IMAGE_DOS_HEADER>(module, 0);
    const auto& headers = *At<IMAGE_NT_HEADERS>(module, static_cast<ULONG_PTR>(dos.e_lfanew));
    return At<IMAGE_IMPORT_DESCRIPTOR>(
        module, headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
}

std::string NameOf(HMODULE module, const IMAGE_THUNK_DATA& thunk) {
    const ULONG_PTR value = thunk.u1.Ordinal;
    if (IMAGE_SNAP_BY_ORDINAL(value)) return std::to_string(IMAGE_ORDINAL(value));
    return At<IMAGE_IMPORT_BY_NAME>(module, value)->Name;
}

std::vector<Import> ImportsOf(HMODULE module) {
    std::vector<Import> imports;
    for (const auto* library = FirstLibrary(module); library->Name != 0; ++library) {
        const auto* name = At<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        const auto* bound = At<IMAGE_THUNK_DATA>(module, library->FirstThunk);
        for (; name->u1.Ordinal != 0; ++name, ++bound) {
            imports.push_back({At<char>(module, library->Name), NameOf(module, *name),
                               const_cast<ULONG_PTR*>(&bound->u1.Function)});
        }
    }
    return imports;
}

// The function that is given for a call of that name, or 0.
ULONG_PTR Given(std::span<const AnsweredCall> calls, std::string_view name) {
    const auto found = std::ranges::lower_bound(calls, name, {}, &AnsweredCall::name);
    return found != calls.end() && found->name == name ? reinterpret_cast<ULONG_PTR>(found->function) : 0;
}

bool StaysWithWindows(const Import& import) {
    return std::ranges::count(otherModules, UpperCase(import.library)) > 0 ||
           std::ranges::binary_search(RuntimeCalls(), import.name);
}

// The table is read-only; its page is made writable for the change.
void Write(ULONG_PTR* address, ULONG_PTR function) {
    DWORD protection = 0;
    if (!VirtualProtect(address, sizeof *address, PAGE_READWRITE, &protection))
        throw std::runtime_error("the import table cannot be written");
    *address = function;
    VirtualProtect(address, sizeof *address, protection, &protection);
}

}  // namespace

ImportTable::ImportTable(HMODULE module, std::span<const AnsweredCall> calls, OtherImports others) {
    if (module == nullptr) throw std::runtime_error("Kestova.dll is not loaded");
    std::string unanswered;
    for (const Import& import : ImportsOf(module)) {
        if (const ULONG_PTR given = Given(calls, import.name); given != 0) {
            entries_.push_back({import.address, *import.address, given});
        } else if (others == OtherImports::Refuse && !StaysWithWindows(import)) {
            unanswered.append(" ").append(import.library).append(":").append(import.name);
        }
    }
    if (!unanswered.empty())
        throw std::runtime_error("the library imports what no emulated PC answers:" + unanswered);
    for (const Entry& entry : entries_)
        Write(entry.address, entry.given);
}

ImportTable::~ImportTable() {
    for (const Entry& entry : entries_)
        Write(entry.address, entry.windows);
}

}  // namespace machine
