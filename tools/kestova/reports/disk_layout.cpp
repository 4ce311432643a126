#include "tools/kestova/reports/disk_layout.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

#include "base/utf.h"
#include "platform/partition_types.h"

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

using Entries = std::vector<PARTITION_INFORMATION_EX>;

Entries AllEntries(const std::vector<BYTE>& layout) {
    auto count = At<DWORD>(layout, offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionCount));
    const BYTE* entry = layout.data() + offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    const BYTE* const end = layout.data() + layout.size();
    Entries entries;
    for (; count > 0 && static_cast<size_t>(end - entry) >= sizeof(PARTITION_INFORMATION_EX); --count) {
        std::memcpy(&entries.emplace_back(), entry, sizeof(PARTITION_INFORMATION_EX));
        entry += sizeof(PARTITION_INFORMATION_EX);
    }
    return entries;
}

// An extended partition has no number.
Entries UsedEntries(const std::vector<BYTE>& layout) {
    Entries entries = AllEntries(layout);
    std::erase_if(entries, [](const PARTITION_INFORMATION_EX& entry) { return entry.PartitionNumber == 0; });
    return entries;
}

// The layout of a disk by its number; nothing, and a last error, if it cannot be read.
std::optional<std::vector<BYTE>> ReadLayoutOf(int disk) {
    const HANDLE handle = OpenDisk(disk);
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    auto layout = ReadLayout(handle);
    const DWORD error = GetLastError();
    CloseHandle(handle);
    SetLastError(error);
    return layout;
}

bool IsExtended(const PARTITION_INFORMATION_EX& entry) {
    return entry.PartitionStyle == PARTITION_STYLE_MBR && PartitionTypeOf(entry.Mbr.PartitionType).extended;
}

bool IsInside(const PARTITION_INFORMATION_EX& inner, const PARTITION_INFORMATION_EX& outer) {
    const int64_t begin = outer.StartingOffset.QuadPart;
    const int64_t at = inner.StartingOffset.QuadPart;
    return at > begin && at < begin + outer.PartitionLength.QuadPart;
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
    const auto layout = ReadLayoutOf(disk);
    if (!layout) return std::nullopt;
    return UsedEntries(*layout);
}

bool HasHiddenBit(BYTE type) {
    constexpr BYTE hiddenBit = 0x10;
    constexpr BYTE visible[] = {0x01, 0x04, 0x06, 0x07, 0x0B, 0x0C, 0x0E};
    return (type & hiddenBit) != 0 && std::ranges::count(visible, static_cast<BYTE>(type & ~hiddenBit)) != 0;
}

std::vector<int> LogicalPartitions(int disk) {
    const Entries entries =
        AllEntries(ReadLayoutOf(disk).value_or(std::vector<BYTE>(sizeof(DRIVE_LAYOUT_INFORMATION_EX))));
    std::vector<int> numbers;
    for (const PARTITION_INFORMATION_EX& entry : entries) {
        const bool isLogical = std::ranges::any_of(entries, [&](const PARTITION_INFORMATION_EX& outer) {
            return IsExtended(outer) && IsInside(entry, outer);
        });
        if (isLogical && entry.PartitionNumber != 0)
            numbers.push_back(static_cast<int>(entry.PartitionNumber));
    }
    return numbers;
}
