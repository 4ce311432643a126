// Which functions of this program belong to the emulated PC, and which to the exported class, by the
// program's own table of symbols.
#pragma once

enum class FunctionOwner {
    Pc,       // a published call, or what is in the emulated PC's namespace
    Kestova,  // a member of the class
    Other,    // also everything outside the program's own file
};

FunctionOwner OwnerOf(const void* address);
