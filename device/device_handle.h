// Opening disks and volumes for their device controls.
#pragma once

#include "base/owners.h"

// Opens a device path for reading and writing, shared for both; no handle when CreateFileW fails (the last
// error tells why).
FileHandle OpenDevice(const WCHAR* path);
