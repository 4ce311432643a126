// Opening disks and volumes for their device controls.
#pragma once

#include "device/owners.h"

// Opens a device path for reading and writing, shared for both. An empty handle if CreateFileW fails; the
// last error is its code.
FileHandle OpenDevice(const WCHAR* path);
