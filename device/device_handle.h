// Opening disks and volumes for their device controls.
#pragma once

#include "base/owners.h"

// Opens a device path for reading and writing, shared for both. An empty handle if CreateFileW fails; the
// last error is its code.
FileHandle OpenDevice(const WCHAR* path);

// Opens the volume of a drive letter for the given access, shared for reading and writing. As OpenDevice.
FileHandle OpenVolume(WCHAR letter, DWORD access);

// The number of the disk with the only extent of a volume. False, with the last error, for a volume on
// several extents (ERROR_MORE_DATA) and after any other failure; the number is unchanged then.
bool ReadDiskNumber(const FileHandle& volume, int& diskNumber);
