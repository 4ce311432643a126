// SystemVolume.ini on the recovery partition: the number of the partition that was active before it.
#pragma once

#include "platform/windows_api.h"

// Below the root.
inline constexpr const WCHAR* systemVolumeIni = TEXT("SystemVolume.ini");

// Writes the number ("%d") as Active in [System], and creates the file. False if that fails.
bool RecordActivePartition(const WCHAR* file, int partition);

// Reads the number. False if the file or the key is missing, or the value is not a number.
bool ReadRecordedPartition(const WCHAR* file, int& partition);
