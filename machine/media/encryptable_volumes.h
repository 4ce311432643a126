// The volumes that BitLocker's provider would list for the disks of a PC.
#pragma once

#include <vector>

#include "machine/facts/pc.h"

namespace machine {

// Fixed volumes with a letter, and locked ones without, in the order of disks and partitions. The method of
// a locked volume is in its metadata, which is not read here; XTS-AES 128 is assumed.
std::vector<EncryptableVolume> EncryptableVolumesOf(const Pc& pc);

}  // namespace machine
