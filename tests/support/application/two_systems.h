// A PC that runs Windows PE beside an installed Windows, each with letters of its own for the same volumes.
#pragma once

#include <cstdint>
#include <string>

#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tests/support/application/application.h"

inline constexpr const char* runningDevices = "HKLM\\SYSTEM\\MountedDevices";
inline constexpr const char* installedDevices = "MountedDevices";

// What a registry remembers for a letter: of a partition on an MBR disk its disk's signature and where it
// begins.
inline machine::RegistryValue Identity(uint32_t signature, uint64_t offset) {
    machine::RegistryValue value{REG_BINARY, {}};
    for (int shift = 0; shift < 32; shift += 8)
        value.data += static_cast<char>(signature >> shift);
    for (int shift = 0; shift < 64; shift += 8)
        value.data += static_cast<char>(offset >> shift);
    return value;
}

// The identity of a partition of the first disk.
inline machine::RegistryValue IdentityOf(machine::Pc& pc, uint32_t partition) {
    return Identity(pc.disks.front().signature, PartitionOf(pc, partition).offset);
}

// Partition:              1 recovery   2 Windows   3 data   of a disk that is gone
// the running system's:   C:           D:          E:       -
// the installed one's:    -            C:          D:       F:
inline machine::Pc TwoSystems() {
    machine::Pc pc = machine::WinPeTwoDisks();
    auto& running = pc.registry[runningDevices];
    running["\\DosDevices\\C:"] = IdentityOf(pc, 1);
    running["\\DosDevices\\D:"] = IdentityOf(pc, 2);
    running["\\DosDevices\\E:"] = IdentityOf(pc, 3);
    auto& installed = pc.offlineSystemHive[installedDevices];
    installed["\\DosDevices\\C:"] = IdentityOf(pc, 2);
    installed["\\DosDevices\\D:"] = IdentityOf(pc, 3);
    installed["\\DosDevices\\F:"] = Identity(0x600DD15C, 1024ULL * 1024);
    return pc;
}

// Whether the installed Windows' hive is still mounted.
inline bool IsHiveMounted(const machine::EmulatedPc& pc) {
    return pc.facts.registry.contains("HKLM\\TEMSYSTEM");
}

// The batch file on X:; null when there is none.
inline const machine::FileTree::Entry* BatchFile(const machine::EmulatedPc& pc) {
    return pc.facts.volumes.front().files.Find("LoadRegistry.bat");
}
