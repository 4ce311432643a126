// What Windows usually says of a disk about which nothing is known but its number and bus.
#pragma once

#include <cstdint>

#include "machine/facts/pc.h"

namespace machine {

// A disk without size and partitions that VDS, WMI and its driver report consistently. `busType` is a VDS bus
// type; the storage bus type is the same number.
Disk StandardDisk(uint32_t number, uint32_t busType);

}  // namespace machine
