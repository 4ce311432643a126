// What the drivers of disks answer.
#pragma once

#include "tools/kestova/capture/findings.h"

void CaptureDevices(Findings& findings);
