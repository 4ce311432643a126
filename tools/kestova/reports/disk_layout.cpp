#include "tools/kestova/reports/disk_layout.h"

#include <cstddef>
#include <cstring>
#include <string>

#include "base/utf.h"

namespace {

// The output of the control code, in a buffer that grows until it fits.
std::optional<std::vector<BYTE>> ReadLayout(HANDLE disk) {
    constexpr size_t largest = 1 << 20;
    for (size_t size = 4096; size <= largest; size *= 2) {
        std::vector<BYTE> buffer(size);
        DWORD returned = 0;
        if (DeviceIoControl(disk, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, nullptr, 0, buffer.data(),
                            static_cast<DWORD>(size), &returned, nullptr)) {
            return buffer;
        }
        if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) break;
    }
    return std::nullopt;
}

template <typename Field>
Field At(const std::vector<BYTE>& layout, size_t offset) {
    Field field;
    std::memcpy(&field, layout.data() + offset, sizeof field);
    return field;
}

std::vector<PARTITION_INFORMATION_EX> UsedEntries(const std::vector<BYTE>& layout) {
    auto count = At<DWORD>(layout, offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionCount));
    const BYTE* entry = layout.data() + offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    const BYTE* const end = layout.data() + layout.size();
    std::vector<PARTITION_INFORMATION_EX> used;
    for (; count > 0 && static_cast<size_t>(end - entry) >= sizeof(PARTITION_INFORMATION_EX); --count) {
        PARTITION_INFORMATION_EX partition;
        std::memcpy(&partition, entry, sizeof partition);
        if (partition.PartitionNumber != 0) used.push_back(partition);
        entry += sizeof(PARTITION_INFORMATION_EX);
    }
    return used;
}

}  // namespace

bool IsActive(const PARTITION_INFORMATION_EX& entry) {
    return entry.PartitionStyle == PARTITION_STYLE_MBR && entry.Mbr.BootIndicator != 0;
}

HANDLE OpenDisk(int disk) {
    const auto name = ToWide("\\\\.\\PHYSICALDRIVE" + std::to_string(disk));
    return CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::optional<DiskTable> ReadDiskTable(HANDLE disk, int64_t size, int64_t sectorSize) {
    const auto layout = ReadLayout(disk);
    if (!layout) return std::nullopt;
    DiskTable table;
    table.style = At<DWORD>(*layout, offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionStyle));
    table.entries = UsedEntries(*layout);
    if (table.style == PARTITION_STYLE_MBR) {
        table.usable = sectorSize;
        table.usableEnd = size;
    } else if (table.style == PARTITION_STYLE_GPT) {
        const auto gpt =
            At<DRIVE_LAYOUT_INFORMATION_GPT>(*layout, offsetof(DRIVE_LAYOUT_INFORMATION_EX, Gpt));
        table.usable = gpt.StartingUsableOffset.QuadPart;
        table.usableEnd = table.usable + gpt.UsableLength.QuadPart;
    }
    return table;
}

std::optional<std::vector<PARTITION_INFORMATION_EX>> ReadDiskLayout(int disk) {
    const HANDLE handle = OpenDisk(disk);
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    const auto layout = ReadLayout(handle);
    const DWORD error = GetLastError();
    CloseHandle(handle);
    SetLastError(error);
    if (!layout) return std::nullopt;
    return UsedEntries(*layout);
}
