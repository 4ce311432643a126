// What each kind of work keeps of the system: a table of rows, of which a work has some. A set of rows has
// bit i for row i.
#pragma once

#include <cstdint>
#include <span>

#include "tools/kestova/process/confinement.h"

// The arguments with which a call is allowed: any; those that open no file for writing; those that map no
// memory that can be executed; those that ask what a terminal is set to; those that have the kernel read a
// disk's table again; those for this process itself.
enum class Only { Any, Reading, WithoutCode, AskingTerminal, RereadingTable, OwnProcess };

struct AllowedCall {
    const char* name;  // calls that an architecture lacks are left out there
    Only only = Only::Any;
};

struct Kept {
    bool (*applies)(const ConfinedWork& work);  // null: only until the files are open
    bool keepsUser;                             // started by sudo, it stays root
    uint64_t capabilities;                      // of root
    std::span<const AllowedCall> calls;
};

using KeptRows = uint32_t;

std::span<const Kept> KeptByWork();

// All of them.
KeptRows RowsAtStart();
KeptRows RowsOf(const ConfinedWork& work);
// Calls `visit` with each row of the set.
template <typename Visit>
void ForEachRow(KeptRows rows, Visit visit) {
    for (const Kept& row : KeptByWork()) {
        if ((rows & 1) != 0) visit(row);
        rows >>= 1;
    }
}
