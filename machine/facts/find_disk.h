// Finds disks by number and partitions by offset.
#pragma once

#include <cstdint>

#include "machine/facts/pc.h"

namespace machine {

// The disk with that number, or null.
Disk* FindDisk(Pc& pc, uint32_t number);

// The first partition that begins at the offset, or null.
Partition* FindPartition(Disk& disk, uint64_t offset);

}  // namespace machine
