// Redirects the imports of a module that Windows has loaded.
#pragma once

#include <vector>

#include "platform/windows_api.h"

namespace machine {

// While it exists, the module's imports of platform calls go to the emulated PC; no other module is
// touched. Imports from the C runtime and the logging library are kept, and so are the functions that the C
// runtime inside the module imports for itself.
class ImportTable {
  public:
    // Throws std::runtime_error with the name of every other import; nothing is changed then.
    explicit ImportTable(HMODULE module);
    ~ImportTable();
    ImportTable(const ImportTable&) = delete;
    ImportTable& operator=(const ImportTable&) = delete;

  private:
    struct Entry {
        ULONG_PTR* address;  // of the slot in the table
        ULONG_PTR windows;   // the original function
        ULONG_PTR emulated;
    };

    std::vector<Entry> entries_;
};

}  // namespace machine
