// What the program gives up. It reads disk images that anybody can have made, often as root; what it can no
// longer do, bytes that mislead it cannot make it do either. On Windows it gives up nothing.
#pragma once

#include <cstddef>
#include <cstdint>

// What a command does once its files are open.
struct ConfinedWork {
    bool writesImages = false;
    bool writesDisks = false;  // of this computer
    bool saves = false;
    uint64_t imageBytes = 0;  // of all images together
    size_t operations = 1;
};

// Whether this build gives up system calls.
bool FiltersSystemCalls();

// Before anything is read: new privileges, core dumps, and every system call that no command makes. Throws
// Failed.
void ConfineAtStart();

// When all files are open: what the work does not need, by the table in confinement.cpp. Throws Failed.
void ConfineTo(const ConfinedWork& work);
