// The running system, the host application and the registry.
#pragma once

#include "tools/kestova/capture/findings.h"

void CaptureSystem(Findings& findings);
