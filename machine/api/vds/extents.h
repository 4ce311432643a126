// The extents of a disk as the Virtual Disk Service lists them.
#pragma once

#include <vector>

#include "machine/journal/emulated_pc.h"
#include "platform/vds.h"

namespace machine {

// Partitions and free space, ordered by offset; one unusable extent for a disk without a table. `id` is the
// disk's. Creates the objects of volumes not listed before.
std::vector<VDS_DISK_EXTENT> ExtentsOf(EmulatedPc& pc, const Disk& disk, const Guid& id);

}  // namespace machine
