// SystemVolume.ini on the recovery partition: which partition was active before the recovery partition.
#pragma once

#include "platform/windows_api.h"

// Writes the number ("%d") under [System] Active; creates the file. False when it could not be written.
bool RecordActivePartition(const WCHAR* file, int partition);

// Reads the number back. False when the file, the key or a number in it is missing.
bool ReadRecordedPartition(const WCHAR* file, int& partition);
