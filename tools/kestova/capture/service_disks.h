// Packs, disks and partitions as the Virtual Disk Service lists them.
#pragma once

#include "tools/kestova/capture/findings.h"

void CaptureServiceDisks(Findings& findings);

// What the service answered for partitions, once their volumes are known: types of extents that their own
// types do not imply, and the switches that its answers decide.
void CaptureAnswersForPartitions(Findings& findings);
