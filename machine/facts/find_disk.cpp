#include "machine/facts/find_disk.h"

#include <algorithm>

namespace machine {

Disk* FindDisk(Pc& pc, uint32_t number) {
    const auto disk = std::find_if(pc.disks.begin(), pc.disks.end(),
                                   [&](const Disk& known) { return known.number == number; });
    return disk != pc.disks.end() ? &*disk : nullptr;
}

Partition* FindPartition(Disk& disk, uint64_t offset) {
    const auto partition = std::find_if(disk.partitions.begin(), disk.partitions.end(),
                                        [&](const Partition& known) { return known.offset == offset; });
    return partition != disk.partitions.end() ? &*partition : nullptr;
}

}  // namespace machine
