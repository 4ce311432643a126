// The defaults of a disk of which only the number and the bus are known.
#pragma once

#include <cstdint>

#include "machine/facts/pc.h"

namespace machine {

// A disk without size and partitions, reported consistently by VDS, WMI and its driver. `busType` is a VDS
// bus type, and also the storage bus type.
Disk StandardDisk(uint32_t number, uint32_t busType);

}  // namespace machine
