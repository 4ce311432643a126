// File-system redirection: which folder a 32-bit program on a 64-bit system gets for System32.
#pragma once

#include "machine/facts/volume_files.h"
#include "machine/journal/emulated_pc.h"

namespace machine {

// The files under the redirection that is currently in force.
VolumeFiles FilesOf(EmulatedPc& pc);

}  // namespace machine
