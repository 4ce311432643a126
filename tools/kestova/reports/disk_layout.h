// The partitions of a disk, as its driver reports them.
#pragma once

#include <optional>
#include <vector>

#include "platform/windows_api.h"

// The used entries in table order; nothing, and a last error, if the disk or its table cannot be read. Calls
// CreateFileW and DeviceIoControl with IOCTL_DISK_GET_DRIVE_LAYOUT_EX.
std::optional<std::vector<PARTITION_INFORMATION_EX>> ReadDiskLayout(int disk);

// Whether the entry has the active flag of an MBR.
bool IsActive(const PARTITION_INFORMATION_EX& entry);
