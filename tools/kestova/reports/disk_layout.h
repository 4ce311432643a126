// The partitions of a disk, as its driver tells them.
#pragma once

#include <optional>
#include <vector>

#include "platform/windows_api.h"

// The used entries in the order of the table; nothing, and a last error, when the disk or its table cannot be
// read. Rests on CreateFileW and DeviceIoControl with IOCTL_DISK_GET_DRIVE_LAYOUT_EX.
std::optional<std::vector<PARTITION_INFORMATION_EX>> ReadDiskLayout(int disk);
