// Which functions of this program belong to the emulated PC, by the program's own table of symbols.
#pragma once

// Whether the address is in a published call or in the emulated PC's namespace. False outside the program's
// own file.
bool IsInEmulatedPc(const void* address);
