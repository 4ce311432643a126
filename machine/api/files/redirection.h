// The switch that a 32-bit program on a 64-bit system has over what it sees as System32.
#pragma once

#include "machine/facts/volume_files.h"
#include "machine/journal/emulated_pc.h"

namespace machine {

// The files as the program sees them now.
VolumeFiles FilesOf(EmulatedPc& pc);

}  // namespace machine
