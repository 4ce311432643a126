// The platform's registry tool; only mounting and unmounting of hives.
#pragma once

#include <string>
#include <vector>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Runs `reg` with these words and returns its exit code.
//
//   load HKLM\NAME FILE    Mounts the keys of a hive file below a new key. On a described volume they are the
//                          PC's `offlineSystemHive`, on a disk image what its `hiveReader` reads. 1 if the
//                          key exists, and if the file is missing, not a hive, or in use.
//   unload HKLM\NAME       Unmounts them. 1 if the key does not exist or was not mounted, and while a key at
//                          or below it is open.
//
// A mounted hive is part of the PC's registry and is listed in the ledger as a "mounted hive". All other
// words return 1 and change nothing, as does every command if the PC's facts make `reg` fail.
uint32_t RunReg(EmulatedPc& pc, const std::vector<std::string>& words);

}  // namespace machine
