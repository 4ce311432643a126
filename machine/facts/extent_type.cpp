#include "machine/facts/extent_type.h"

#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint64_t platformRequired = 1;

VDS_DISK_EXTENT_TYPE GptExtentType(const Partition& partition) {
    const VDS_DISK_EXTENT_TYPE extent = PartitionTypeOf(partition.gptType).extent;
    // Data that the maker requires is the maker's.
    const bool isRequired = (partition.attributes & platformRequired) != 0;
    return extent == VDS_DET_DATA && isRequired ? VDS_DET_OEM : extent;
}

}  // namespace

VDS_DISK_EXTENT_TYPE ExtentTypeOf(PartitionStyle style, const Partition& partition) {
    switch (style) {
        case PartitionStyle::Mbr:
            return PartitionTypeOf(partition.mbrType).extent;
        case PartitionStyle::Gpt:
            return GptExtentType(partition);
        case PartitionStyle::Unknown:
            break;
    }
    return VDS_DET_UNKNOWN;
}

bool IsExtended(PartitionStyle style, const Partition& partition) {
    return style == PartitionStyle::Mbr && PartitionTypeOf(partition.mbrType).extended;
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
