// What BitLocker's provider would list of the disks of a PC.
#pragma once

#include <vector>

#include "machine/facts/pc.h"

namespace machine {

// The fixed volumes that have a letter, and the locked ones without, in the order of disks and partitions.
// How a locked volume is encrypted stands in its metadata, which nobody asks for: it counts as XTS-AES 128.
std::vector<EncryptableVolume> EncryptableVolumesOf(const Pc& pc);

}  // namespace machine
