// What the running system's registry remembers of the letters it gave.
#pragma once

#include "machine/facts/pc.h"

namespace machine {

// The values of the key MountedDevices for the letters of the disks' partitions: "\DosDevices\C:", and where
// the partition is. On MBR disks that is signature and offset, on GPT disks the partition's id.
std::map<std::string, RegistryValue> MountedDevicesOf(const Pc& pc);

}  // namespace machine
