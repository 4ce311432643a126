// The PC on which code of the library runs, with one file of its own.
#pragma once

#include "base/com_apartment.h"
#include "machine/entry/loaded_library.h"
#include "machine/journal/emulated_pc.h"

// The program has loaded the library, as long as it runs.
inline void LoadLibraryOnce() {
    static const machine::LoadedLibrary library;
}

struct EmulatedHost {
    explicit EmulatedHost(machine::Pc facts) : pc((LoadLibraryOnce(), std::move(facts))) {}

    machine::EmulatedPc pc;
    ComApartment com;
};
