// Hives that are mounted into the registry of the running system.
#pragma once

#include <string>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Mounts the keys of a hive file below a new key, "HKLM\\NAME". On a described volume they are the PC's
// `offlineSystemHive`, on a disk image what its `hiveReader` reads. A mounted hive is part of the PC's
// registry and is listed in the ledger as a "mounted hive". Error 87 for any other key, 5 if it exists, 32
// for the hive of the running system, and those of VolumeFiles and of the reader.
uint32_t MountHive(EmulatedPc& pc, const std::string& mount, const std::string& file);

// Error 2 if the key does not exist or cannot be a mount, 5 while a key at or below it is open.
uint32_t UnmountHive(EmulatedPc& pc, const std::string& mount);

}  // namespace machine
