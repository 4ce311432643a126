// What the Virtual Disk Service makes of a partition's type.
#pragma once

#include "machine/facts/pc.h"
#include "platform/vds.h"

namespace machine {

// Data: a type that the service recognises as a volume. OEM, ESP and unknown partitions can have letters
// of their own; reserved ones and those of dynamic disks cannot.
VDS_DISK_EXTENT_TYPE ExtentTypeOf(PartitionStyle style, const Partition& partition);

// An extended partition only holds others.
bool IsExtended(PartitionStyle style, const Partition& partition);

// A disk of unknown style that nevertheless has partitions has a table that the service cannot name.
bool HasTable(const Disk& disk);

// As the service numbers them: unknown 0, MBR 1, GPT 2.
VDS_PARTITION_STYLE VdsStyle(PartitionStyle style);

}  // namespace machine
