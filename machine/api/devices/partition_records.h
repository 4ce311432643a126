// Partitions and tables of the model in the layout of the device controls.
#pragma once

#include <vector>

#include "machine/facts/pc.h"

namespace machine {

PARTITION_INFORMATION_EX PartitionRecord(const Disk& disk, const Partition& partition);
// The disk itself, as partition 0.
PARTITION_INFORMATION_EX WholeDiskRecord(const Disk& disk);

// A DRIVE_LAYOUT_INFORMATION_EX with all partitions; an MBR has a multiple of four, the last of them unused.
std::vector<char> DriveLayoutRecord(const Disk& disk);

// A data volume that the logical disk manager keeps in a GPT partition; no single partition tells of it.
bool IsDynamicDataOfGpt(const Disk& disk, const Partition& partition);

}  // namespace machine
