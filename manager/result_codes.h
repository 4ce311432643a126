// Result codes of the operations that return why they failed. 0 is success. The names that begin with ERROR_
// also occur in records.
#pragma once

#include "platform/windows_api.h"

enum : int {
    NO_INTERNAL_DISK = 100,
    ERROR_GET_PARTITION_TYPE = 101,  // no such partition, not GPT, or the service failed
    ERROR_GET_DRIVE_LETTER = 104,    // the partition has no letter
    ERROR_SET_DRIVE_LETTER = 105,    // the letter could not be assigned or deleted
    UNKNOWN_DISK_STYLE = 106,        // neither MBR nor GPT
    ERROR_NO_EXIST_OS = 110,         // the partition contains no installed Windows
    ERROR_GET_DISK_STYLE = 111,      // the partition style could not be read
    ERROR_NOT_ORVOBOOT_GUID = 113,   // the partition does not have the expected GPT type
    NO_SYSTEM_PARTITION_TYPE = 115,  // the GPT type of partition 3 could not be read
    NO_VOLUME_LAYER = 116,
};

// The records with which a switch of the active partition says that there was nothing to do; its result is
// that of a switch that was made.
inline constexpr const WCHAR* recoveryWasActive =
    TEXT("Kestova::SetRcvprtActive\tGetActivePartitionNumber PartitionNumber is 1. 0");
inline constexpr const WCHAR* systemWasActive =
    TEXT("Kestova::SetSystemActive\t\tPartitionNumber is not 1. 0");
