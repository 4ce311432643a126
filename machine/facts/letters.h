// Which letter opens what.
#pragma once

#include <string>

#include "machine/facts/pc.h"

namespace machine {

// A volume and where it lies; disk and partition are null for one without a disk.
struct LocatedVolume {
    Volume* volume = nullptr;
    Partition* partition = nullptr;
    Disk* disk = nullptr;

    explicit operator bool() const { return volume != nullptr; }
};

// What the letter (in either case) opens; partitions come before volumes without a disk.
LocatedVolume FindLetter(Pc& pc, char letter);

// Why nothing on the volume can be read: 1005 for a file system that nothing reads, 0x80310000 for one that
// BitLocker keeps locked; 0 when it can.
uint32_t WhyUnreadable(const Volume& volume);

// Every letter in use, upper case, ascending, each once.
std::string UsedLetters(const Pc& pc);

}  // namespace machine
