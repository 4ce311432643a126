// The import table of a module that Windows has loaded.
#pragma once

#include <vector>

#include "platform/windows_api.h"

namespace machine {

// While it lives the module's imports of platform calls lead to the emulated PC; no other module is touched.
// What the module imports from the C runtime and from the logging library stays, and so do the functions by
// which the C runtime inside the module serves itself.
class ImportTable {
  public:
    // Throws std::runtime_error naming every import that is none of these; nothing is changed then.
    explicit ImportTable(HMODULE module);
    ~ImportTable();
    ImportTable(const ImportTable&) = delete;
    ImportTable& operator=(const ImportTable&) = delete;

  private:
    struct Entry {
        ULONG_PTR* address;  // in the table
        ULONG_PTR windows;   // Windows' function
        ULONG_PTR emulated;
    };

    std::vector<Entry> entries_;
};

}  // namespace machine
