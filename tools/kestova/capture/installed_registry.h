// The registry of the installed Windows, as Windows PE can read it.
#pragma once

#include "tools/kestova/capture/findings.h"

// Mounts the SYSTEM hive of the first letter that holds another Windows than the running one, reads the keys
// that the library reads, and unmounts it. The platform replays the hive's logs on the way, which can write
// to them. The volumes are known. What fails is noted.
void CaptureInstalledRegistry(Findings& findings);
