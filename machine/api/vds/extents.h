// What lies on a disk, as the Virtual Disk Service lists it.
#pragma once

#include <vector>

#include "machine/journal/emulated_pc.h"
#include "platform/vds.h"

namespace machine {

// Partitions and the free space around them, by offset; one unusable extent for a disk without a table. `id`
// is the disk's. Volumes get their objects here.
std::vector<VDS_DISK_EXTENT> ExtentsOf(EmulatedPc& pc, const Disk& disk, const Guid& id);

}  // namespace machine
