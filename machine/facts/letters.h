// Maps drive letters to volumes.
#pragma once

#include <string>

#include "machine/facts/pc.h"

namespace machine {

// A volume with its partition and disk, which are null for a volume without a disk.
struct LocatedVolume {
    Volume* volume = nullptr;
    Partition* partition = nullptr;
    Disk* disk = nullptr;

    explicit operator bool() const { return volume != nullptr; }
};

// The volume with that letter (in either case); partitions come before volumes without a disk.
LocatedVolume FindLetter(Pc& pc, char letter);

inline constexpr uint32_t errorLockedVolume = 0x80310000;  // FVE_E_LOCKED_VOLUME

// 0 if the volume can be read, otherwise the error: 1005 for an unknown file system, 0x80310000 for one
// that BitLocker keeps locked.
uint32_t WhyUnreadable(const Volume& volume);

// Whether its file system, on an image, is known and does not even have a root folder.
bool IsDamaged(const Volume& volume);

// Every letter in use, upper case, ascending, each once.
std::string UsedLetters(const Pc& pc);

}  // namespace machine
