// How WMI lists the disks.
#pragma once

#include <optional>
#include <vector>

#include "machine/facts/pc.h"

namespace machine {

// The disks that it lists: first those in the PC's `wmiOrder`, then the others in the PC's order.
std::vector<const Disk*> DisksOfWmi(const Pc& pc);

// The class that associates a disk with its controllers; nothing if none does.
std::optional<ControllerKind> KindOfControllers(const Disk& disk);

}  // namespace machine
