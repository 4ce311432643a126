// The platform's registry tool; only mounting and unmounting of hives.
#pragma once

#include <string>
#include <vector>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Runs `reg` with these words and returns its exit code.
//
//   load HKLM\NAME FILE    as MountHive
//   unload HKLM\NAME       as UnmountHive
//
// 1 after a failure; so it is for all other words, and for every command if the PC's facts make `reg` fail.
uint32_t RunReg(EmulatedPc& pc, const std::vector<std::string>& words);

}  // namespace machine
