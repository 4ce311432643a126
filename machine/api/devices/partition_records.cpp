#include "machine/api/devices/partition_records.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/utf.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint64_t sectorSize = 512;
constexpr uint64_t gptSectors = 34;  // protective MBR, header and 128 entries; the backup has no MBR
constexpr DWORD gptEntries = 128;
constexpr size_t mbrSlots = 4;

PARTITION_STYLE StyleOf(const Disk& disk) {
    switch (disk.style) {
        case PartitionStyle::Mbr:
            return PARTITION_STYLE_MBR;
        case PartitionStyle::Gpt:
            return PARTITION_STYLE_GPT;
        case PartitionStyle::Unknown:
            break;
    }
    return PARTITION_STYLE_RAW;
}

// An unused entry.
PARTITION_INFORMATION_EX UnusedRecord(const Disk& disk) {
    PARTITION_INFORMATION_EX record;
    std::memset(&record, 0, sizeof record);
    record.PartitionStyle = StyleOf(disk);
    return record;
}

}  // namespace

PARTITION_INFORMATION_EX PartitionRecord(const Disk& disk, const Partition& partition) {
    PARTITION_INFORMATION_EX record = UnusedRecord(disk);
    record.StartingOffset.QuadPart = static_cast<LONGLONG>(partition.offset);
    record.PartitionLength.QuadPart = static_cast<LONGLONG>(partition.size);
    record.PartitionNumber = partition.number;
    if (disk.style == PartitionStyle::Mbr) {
        record.Mbr.PartitionType = partition.mbrType;
        record.Mbr.BootIndicator = partition.bootIndicator;
        record.Mbr.RecognizedPartition = PartitionTypeOf(partition.mbrType).extent == VDS_DET_DATA;
        record.Mbr.HiddenSectors = static_cast<DWORD>(partition.offset / sectorSize);
    } else if (disk.style == PartitionStyle::Gpt) {
        record.Gpt.PartitionType = partition.gptType;
        record.Gpt.PartitionId = partition.gptId;
        record.Gpt.Attributes = partition.attributes;
        const WideString name = ToWide(partition.name);
        name.copy(record.Gpt.Name, std::size(record.Gpt.Name));
    }
    return record;
}

PARTITION_INFORMATION_EX WholeDiskRecord(const Disk& disk) {
    PARTITION_INFORMATION_EX record = UnusedRecord(disk);
    record.PartitionLength.QuadPart = static_cast<LONGLONG>(disk.size);
    return record;
}

std::vector<char> DriveLayoutRecord(const Disk& disk) {
    size_t count = disk.partitions.size();
    if (disk.style == PartitionStyle::Mbr) count = (count + mbrSlots - 1) / mbrSlots * mbrSlots;

    DRIVE_LAYOUT_INFORMATION_EX header;
    std::memset(&header, 0, sizeof header);
    header.PartitionStyle = StyleOf(disk);
    header.PartitionCount = static_cast<DWORD>(count);
    if (disk.style == PartitionStyle::Mbr) {
        header.Mbr.Signature = disk.signature;
    } else if (disk.style == PartitionStyle::Gpt) {
        const uint64_t tables = (2 * gptSectors - 1) * sectorSize;
        header.Gpt.DiskId = disk.guid;
        header.Gpt.StartingUsableOffset.QuadPart = gptSectors * sectorSize;
        header.Gpt.UsableLength.QuadPart = static_cast<LONGLONG>(disk.size > tables ? disk.size - tables : 0);
        header.Gpt.MaxPartitionCount = gptEntries;
    }

    constexpr size_t start = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    std::vector<char> layout(std::max(sizeof header, start + count * sizeof(PARTITION_INFORMATION_EX)));
    std::memcpy(layout.data(), &header, start);
    for (size_t i = 0; i < count; ++i) {
        const PARTITION_INFORMATION_EX record =
            i < disk.partitions.size() ? PartitionRecord(disk, disk.partitions[i]) : UnusedRecord(disk);
        std::memcpy(layout.data() + start + i * sizeof record, &record, sizeof record);
    }
    return layout;
}

bool IsDynamicDataOfGpt(const Disk& disk, const Partition& partition) {
    return disk.style == PartitionStyle::Gpt && partition.gptType == PARTITION_LDM_DATA_GUID;
}

}  // namespace machine
