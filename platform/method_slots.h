// Compile-time checks that virtual methods are in their published slots, for 64 and 32 bits. They hold for
// sources that are compiled with -O2, not by MSVC: the optimiser evaluates them, and they generate no code.
#pragma once

#include <cstddef>
#include <cstring>

// Compilation fails if a call of this remains; the optimiser removes it where the slot is right.
[[gnu::error("a method does not stand in its published slot")]] void StandsInAnotherSlot();

// A pointer to a virtual method begins with the offset of its slot in bytes, plus one.
template <typename Method>
[[gnu::always_inline]] inline void CheckSlot(Method method, size_t slot) {
    size_t offset = 0;
    std::memcpy(&offset, &method, sizeof(offset));
    if (offset != slot * sizeof(void*) + 1) StandsInAnotherSlot();
}

// Checks the methods that follow each other from a slot on.
template <typename... Methods>
[[gnu::always_inline]] inline void CheckSlotsFrom(size_t slot, Methods... methods) {
    (CheckSlot(methods, slot++), ...);
}
