// Redirects the imports of a module that Windows has loaded.
#pragma once

#include <span>
#include <vector>

#include "machine/entry/windows/answered_calls.h"

#include "platform/windows_api.h"

namespace machine {

// What becomes of an import that none of the given calls replaces, and that is neither the C runtime's nor
// the logging library's.
enum class OtherImports { Refuse, StayWithWindows };

// While it exists, the module's imports of these platform calls go to the given functions; no other module is
// touched. Imports from the C runtime and the logging library are kept, and so are the functions that the C
// runtime inside the module imports for itself.
class ImportTable {
  public:
    // The calls are sorted by name. Throws std::runtime_error for a module that is null, and with the names
    // of all other imports if these are refused; nothing is changed then.
    ImportTable(HMODULE module, std::span<const AnsweredCall> calls, OtherImports others);
    ~ImportTable();
    ImportTable(const ImportTable&) = delete;
    ImportTable& operator=(const ImportTable&) = delete;

  private:
    struct Entry {
        ULONG_PTR* address;  // of the slot in the table
        ULONG_PTR windows;   // the original function
        ULONG_PTR given;
    };

    std::vector<Entry> entries_;
};

}  // namespace machine
