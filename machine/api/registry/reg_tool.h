// The platform's registry tool, as far as it mounts hives and takes them away again.
#pragma once

#include <string>
#include <vector>

#include "machine/journal/emulated_pc.h"

namespace machine {

// `reg` with these words; its exit code.
//
//   load HKLM\NAME FILE    The keys of a hive file appear below a new key. On a described volume they are the
//                          PC's `offlineSystemHive`, on a disk image what its `hiveReader` finds. 1 when the
//                          key exists, the file does not or is no hive, or it is the running system's own.
//   unload HKLM\NAME       They disappear. 1 when there is no such key, when it is none that was mounted, and
//                          while a key at or below it is open.
//
// A hive that stays mounted is in the PC's registry, and in its ledger as a "mounted hive". 1 and nothing
// else for other words, and whenever the PC's facts let `reg` fail.
uint32_t RunReg(EmulatedPc& pc, const std::vector<std::string>& words);

}  // namespace machine
