// What WMI lists.
#pragma once

#include "tools/kestova/capture/findings.h"

// The instances of Win32_DiskDrive, their order, and the controllers associated with each.
void CaptureDisksOfWmi(Findings& findings);

void CaptureEncryptableVolumes(Findings& findings);
