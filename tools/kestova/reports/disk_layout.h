// The partitions of a disk, as its driver reports them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/windows_api.h"

// The used entries in table order; nothing, and a last error, if the disk or its table cannot be read. Calls
// CreateFileW and DeviceIoControl with IOCTL_DISK_GET_DRIVE_LAYOUT_EX.
std::optional<std::vector<PARTITION_INFORMATION_EX>> ReadDiskLayout(int disk);

// A table with its style, and the space that its partitions can take.
struct DiskTable {
    DWORD style = PARTITION_STYLE_RAW;
    int64_t usable = 0;  // bytes, as is the next
    int64_t usableEnd = 0;
    std::vector<PARTITION_INFORMATION_EX> entries = {};
};

// The disk for reading; INVALID_HANDLE_VALUE and a last error if it cannot be opened. Close it by
// CloseHandle.
HANDLE OpenDisk(int disk);

// As ReadDiskLayout, of a disk of that size with such sectors. Without a table no space is usable.
std::optional<DiskTable> ReadDiskTable(HANDLE disk, int64_t size, int64_t sectorSize);

// Whether the entry has the active flag of an MBR.
bool IsActive(const PARTITION_INFORMATION_EX& entry);

// Whether an MBR type is that of a partition which Windows gets to see, with the bit that hides it.
bool HasHiddenBit(BYTE type);

// The numbers of an MBR disk's partitions that are inside an extended one, as far as the driver lists that.
// Calls what ReadDiskLayout calls.
std::vector<int> LogicalPartitions(int disk);
