// Result codes of the operations that return why they failed. 0 is success. The names that begin with ERROR_
// also occur in records.
#pragma once

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
