#include "machine/facts/extent_type.h"

#include <algorithm>
#include <iterator>

#include "platform/partition_types.h"

namespace machine {

namespace {

struct MbrRow {
    uint8_t type;
    VDS_DISK_EXTENT_TYPE extent;
};

constexpr MbrRow mbrRows[] = {
    {0x01, VDS_DET_DATA},
    {0x04, VDS_DET_DATA},
    {0x06, VDS_DET_DATA},
    {MBR_ID_NTFS, VDS_DET_DATA},
    {0x0B, VDS_DET_DATA},
    {0x0C, VDS_DET_DATA},
    {0x0E, VDS_DET_DATA},
    {MBR_ID_OEM_RECOVERY, VDS_DET_OEM},
    {MBR_ID_HIDDEN_RECOVERY, VDS_DET_OEM},
    {MBR_ID_BIOS_HIBERNATION, VDS_DET_OEM},
    {0xA0, VDS_DET_OEM},
    {0xDE, VDS_DET_OEM},
    {0xFE, VDS_DET_OEM},
    {0x42, VDS_DET_LDM},
};

struct GptRow {
    GUID type;
    VDS_DISK_EXTENT_TYPE extent;
};

constexpr GUID logicalDiskMetadata = {
    0x5808c8aa, 0x7e8f, 0x42e0, {0x85, 0xd2, 0xe1, 0xe9, 0x04, 0x34, 0xcf, 0xb3}};
constexpr GUID logicalDiskData = {
    0xaf9b60a0, 0x1431, 0x4f62, {0xbc, 0x68, 0x33, 0x11, 0x71, 0x4a, 0x69, 0xad}};

constexpr GptRow gptRows[] = {
    {PARTITION_BASIC_DATA_GUID, VDS_DET_DATA},   {PARTITION_SYSTEM_GUID, VDS_DET_ESP},
    {PARTITION_MSFT_RESERVED_GUID, VDS_DET_MSR}, {PARTITION_MSFT_RECOVERY_GUID, VDS_DET_OEM},
    {logicalDiskMetadata, VDS_DET_LDM},          {logicalDiskData, VDS_DET_LDM},
};

constexpr uint64_t platformRequired = 1;

VDS_DISK_EXTENT_TYPE MbrExtentType(uint8_t type) {
    const auto row = std::find_if(std::begin(mbrRows), std::end(mbrRows),
                                  [&](const MbrRow& known) { return known.type == type; });
    return row != std::end(mbrRows) ? row->extent : VDS_DET_UNKNOWN;
}

VDS_DISK_EXTENT_TYPE GptExtentType(const Partition& partition) {
    const auto row = std::find_if(std::begin(gptRows), std::end(gptRows), [&](const GptRow& known) {
        return IsSameGuid(known.type, partition.gptType);
    });
    if (row == std::end(gptRows)) return VDS_DET_UNKNOWN;
    // Data that the maker requires is the maker's.
    if (row->extent == VDS_DET_DATA && (partition.attributes & platformRequired) != 0) return VDS_DET_OEM;
    return row->extent;
}

}  // namespace

VDS_DISK_EXTENT_TYPE ExtentTypeOf(PartitionStyle style, const Partition& partition) {
    switch (style) {
        case PartitionStyle::Mbr:
            return MbrExtentType(partition.mbrType);
        case PartitionStyle::Gpt:
            return GptExtentType(partition);
        case PartitionStyle::Unknown:
            break;
    }
    return VDS_DET_UNKNOWN;
}

bool IsExtended(PartitionStyle style, const Partition& partition) {
    return style == PartitionStyle::Mbr && (partition.mbrType == 0x05 || partition.mbrType == 0x0F);
}

bool HasTable(const Disk& disk) {
    return disk.style != PartitionStyle::Unknown || !disk.partitions.empty();
}

VDS_PARTITION_STYLE VdsStyle(PartitionStyle style) {
    switch (style) {
        case PartitionStyle::Mbr:
            return VDS_PST_MBR;
        case PartitionStyle::Gpt:
            return VDS_PST_GPT;
        case PartitionStyle::Unknown:
            break;
    }
    return VDS_PST_UNKNOWN;
}

}  // namespace machine
