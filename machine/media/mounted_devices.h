// The drive letters that the running system's registry has recorded.
#pragma once

#include "machine/facts/pc.h"

namespace machine {

// The values of the MountedDevices key for the letters of the disks' partitions: "\DosDevices\C:" with the
// partition's location, which is signature and offset on MBR disks, the partition's id on GPT disks.
std::map<std::string, RegistryValue> MountedDevicesOf(const Pc& pc);

}  // namespace machine
