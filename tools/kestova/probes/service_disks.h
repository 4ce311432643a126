// The disks of the Virtual Disk Service: their partitions, letters, extents and volumes.
#pragma once

#include "platform/vds.h"
#include "tools/kestova/probes/probes.h"

// Asks everything of each disk of the list.
void ProbeDisks(Probes& probes, const std::string& name, IEnumVdsObject& list, IVdsService& service);
