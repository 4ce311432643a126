#include "machine/api/vds/extents.h"

#include <algorithm>

#include "machine/api/vds/objects.h"
#include "machine/api/vds/volume.h"
#include "machine/facts/extent_type.h"

namespace machine {

namespace {

VDS_DISK_EXTENT MakeExtent(const Guid& diskId, VDS_DISK_EXTENT_TYPE type, uint64_t offset, uint64_t size) {
    VDS_DISK_EXTENT extent{};
    extent.diskId = diskId;
    extent.type = type;
    extent.ullOffset = offset;
    extent.ullSize = size;
    return extent;
}

VDS_DISK_EXTENT_TYPE TypeOf(EmulatedPc& pc, const Disk& disk, const Partition& partition) {
    if (partition.volume && partition.volume->extentType)
        return static_cast<VDS_DISK_EXTENT_TYPE>(*partition.volume->extentType);
    const VolumePlace place = {disk.number, partition.offset};
    const bool keptWhenHidden =
        !pc.facts.switches.hidingRemovesVolume && VdsObjects::Of(pc).FindVolume(place) != nullptr;
    return keptWhenHidden ? VDS_DET_DATA : ExtentTypeOf(disk.style, partition);
}

// A data partition is a volume even if it is not formatted, others only if they have contents.
bool HasVolume(VDS_DISK_EXTENT_TYPE type, const Partition& partition) {
    switch (type) {
        case VDS_DET_UNKNOWN:
        case VDS_DET_FREE:
        case VDS_DET_OEM:
        case VDS_DET_UNUSABLE:
            return false;
        case VDS_DET_DATA:
            return true;
        default:
            return partition.volume.has_value();
    }
}

std::vector<const Partition*> ByOffset(const Disk& disk) {
    std::vector<const Partition*> partitions;
    for (const Partition& partition : disk.partitions)
        partitions.push_back(&partition);
    std::stable_sort(partitions.begin(), partitions.end(), [](const Partition* left, const Partition* right) {
        return left->offset < right->offset;
    });
    return partitions;
}

}  // namespace

std::vector<VDS_DISK_EXTENT> ExtentsOf(EmulatedPc& pc, const Disk& disk, const Guid& id) {
    if (!HasTable(disk)) return {MakeExtent(id, VDS_DET_UNUSABLE, 0, disk.size)};
    std::vector<VDS_DISK_EXTENT> extents;
    uint64_t end = 0;
    for (const Partition* partition : ByOffset(disk)) {
        if (partition->offset > end)
            extents.push_back(MakeExtent(id, VDS_DET_FREE, end, partition->offset - end));
        const VDS_DISK_EXTENT_TYPE type = TypeOf(pc, disk, *partition);
        VDS_DISK_EXTENT extent = MakeExtent(id, type, partition->offset, partition->size);
        if (HasVolume(type, *partition))
            extent.volumeId = VdsObjects::Of(pc).VolumeObject(pc, {disk.number, partition->offset}).Id();
        extents.push_back(extent);
        end = std::max(end, partition->offset + partition->size);
    }
    if (disk.size > end) extents.push_back(MakeExtent(id, VDS_DET_FREE, end, disk.size - end));
    return extents;
}

}  // namespace machine
