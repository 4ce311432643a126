// The volumes, with and without a letter.
#pragma once

#include "tools/kestova/capture/findings.h"

// Puts each volume into its partition, and those without a disk into the list of the PC. The disks are known.
void CaptureVolumes(Findings& findings);
