// Converts the model's partitions and tables to the structures of the device controls.
#pragma once

#include <vector>

#include "machine/facts/pc.h"

namespace machine {

PARTITION_INFORMATION_EX PartitionRecord(const Disk& disk, const Partition& partition);
// The disk itself, as partition 0.
PARTITION_INFORMATION_EX WholeDiskRecord(const Disk& disk);

// A DRIVE_LAYOUT_INFORMATION_EX with all partitions. An MBR table is padded with unused entries to a
// multiple of four.
std::vector<char> DriveLayoutRecord(const Disk& disk);

// A data volume that the logical disk manager keeps in a GPT partition. Such a volume does not correspond
// to one partition.
bool IsDynamicDataOfGpt(const Disk& disk, const Partition& partition);

}  // namespace machine
