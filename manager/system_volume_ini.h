// SystemVolume.ini on the recovery partition: the number of the partition that was active before it.
#pragma once

#include "base/scan.h"
#include "base/wide_string.h"
#include "platform/windows_api.h"

// Below the root.
inline constexpr const WCHAR* systemVolumeIni = TEXT("SystemVolume.ini");

namespace system_record {
inline constexpr const WCHAR* section = TEXT("System");
inline constexpr const WCHAR* key = TEXT("Active");
inline constexpr const WCHAR* noValue = TEXT("_NO_VALUE_");
}  // namespace system_record

// Writes the number ("%d") as Active in [System], and creates the file. False if that fails.
bool RecordActivePartition(const WCHAR* file, int partition);

// Reads the number. False if the file or the key is missing, or the value is not a number. Here, so that the
// tool asks its own PC by the same calls.
inline bool ReadRecordedPartition(const WCHAR* file, int& partition) {
    WCHAR value[MAX_PATH] = {};
    GetPrivateProfileStringW(system_record::section, system_record::key, system_record::noValue, value,
                             MAX_PATH, file);
    return !EqualIgnoringCase(value, system_record::noValue) &&
           ScanNumbers(value, TEXT("%d"), {&partition}) == 1;
}
