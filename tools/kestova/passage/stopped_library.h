// The library as Windows has loaded it, kept from changing the PC.
#pragma once

#include "machine/entry/windows/import_table.h"
#include "tools/kestova/passage/change_stop.h"

// While it exists, the platform calls of Kestova.dll go to Windows as far as they ask; a change is refused,
// as in passed_objects.h or with ERROR_CANCELLED. Only one may exist at a time, and every object of the
// library is made and destroyed during its lifetime.
class StoppedLibrary {
  public:
    // Throws std::runtime_error if the imports cannot be redirected.
    StoppedLibrary();
    ~StoppedLibrary();
    StoppedLibrary(const StoppedLibrary&) = delete;
    StoppedLibrary& operator=(const StoppedLibrary&) = delete;

    ChangeStop& Stop() { return stop_; }

  private:
    ChangeStop stop_;
    machine::ImportTable imports_;
};
