// The disk as a whole: its properties and what lies on it.
#include "machine/api/vds_disk.h"

#include <algorithm>

#include "machine/api/com_memory.h"
#include "machine/api/vds_extent_type.h"
#include "machine/api/vds_pack.h"
#include "machine/api/vds_volume.h"

namespace machine {

namespace {

constexpr ULONG dynamicDisk = 0x2000;

std::string AddressOf(const Disk& disk) {
    const ScsiAddress address = disk.scsiAddress.value.value_or(ScsiAddress());
    return "Port" + std::to_string(address.port) + "Path" + std::to_string(address.path) + "Target" +
           std::to_string(address.target) + "Lun" + std::to_string(address.lun);
}

// The device interface's path: the PNP device id with '#' for every backslash, and the class of disks.
std::string DevicePathOf(const Disk& disk) {
    std::string path = disk.wmi && disk.wmi->pnpDeviceId ? *disk.wmi->pnpDeviceId : DiskText(disk.number);
    std::replace(path.begin(), path.end(), '\\', '#');
    return "\\\\?\\" + path + "#{53f56307-b6bf-11d0-94f2-00a0c91efb8b}";
}

void FillStrings(EmulatedPc& pc, const Disk& disk, VDS_DISK_PROP& properties) {
    const auto lend = [&](const std::string& text) { return LendText(pc, "VDS_DISK_PROP string", text); };
    properties.pwszDiskAddress = lend(AddressOf(disk));
    if (disk.vdsName) properties.pwszName = lend(*disk.vdsName);
    properties.pwszFriendlyName = lend("Disk drive " + std::to_string(disk.number));
    properties.pwszAdaptorName = lend(disk.controllers.empty() ? "" : disk.controllers.front());
    properties.pwszDevicePath = lend(DevicePathOf(disk));
}

// Gathers the extents of one disk in the order of their offsets.
class ExtentList {
  public:
    ExtentList(EmulatedPc& pc, const Disk& disk, const Guid& id) : pc_(pc), disk_(disk), id_(id) {
        if (disk.style == PartitionStyle::Unknown && disk.partitions.empty()) {
            Add(VDS_DET_UNUSABLE, 0, disk.size);
            return;
        }
        uint64_t end = 0;
        for (const Partition* partition : ByOffset()) {
            if (partition->offset > end) Add(VDS_DET_FREE, end, partition->offset - end);
            AddPartition(*partition);
            end = std::max(end, partition->offset + partition->size);
        }
        if (disk.size > end) Add(VDS_DET_FREE, end, disk.size - end);
    }

    const std::vector<VDS_DISK_EXTENT>& Extents() const { return extents_; }

  private:
    std::vector<const Partition*> ByOffset() const {
        std::vector<const Partition*> partitions;
        for (const Partition& partition : disk_.partitions)
            partitions.push_back(&partition);
        std::stable_sort(
            partitions.begin(), partitions.end(),
            [](const Partition* left, const Partition* right) { return left->offset < right->offset; });
        return partitions;
    }

    VDS_DISK_EXTENT& Add(VDS_DISK_EXTENT_TYPE type, uint64_t offset, uint64_t size) {
        VDS_DISK_EXTENT extent{};
        extent.diskId = id_;
        extent.type = type;
        extent.ullOffset = offset;
        extent.ullSize = size;
        return extents_.emplace_back(extent);
    }

    void AddPartition(const Partition& partition) {
        const VDS_DISK_EXTENT_TYPE type = TypeOf(partition);
        VDS_DISK_EXTENT& extent = Add(type, partition.offset, partition.size);
        const bool hasVolume =
            type == VDS_DET_DATA || (type != VDS_DET_UNKNOWN && type != VDS_DET_FREE && type != VDS_DET_OEM &&
                                     type != VDS_DET_UNUSABLE && partition.volume.has_value());
        if (hasVolume) {
            extent.volumeId = VdsObjects::Of(pc_).VolumeObject(pc_, {disk_.number, partition.offset}).Id();
        }
    }

    VDS_DISK_EXTENT_TYPE TypeOf(const Partition& partition) const {
        if (partition.volume && partition.volume->extentType)
            return static_cast<VDS_DISK_EXTENT_TYPE>(*partition.volume->extentType);
        const bool keptItsVolume =
            !pc_.pc.switches.hidingRemovesVolume &&
            VdsObjects::Of(pc_).FindVolume(VolumePlace{disk_.number, partition.offset}) != nullptr;
        return keptItsVolume ? VDS_DET_DATA : ExtentTypeOf(disk_.style, partition);
    }

    EmulatedPc& pc_;
    const Disk& disk_;
    const Guid& id_;
    std::vector<VDS_DISK_EXTENT> extents_;
};

}  // namespace

VdsDisk::VdsDisk(uint32_t number, const Guid& id)
    : AsDisk(*this, IID_IVdsDisk, "IVdsDisk"),
      AsAdvancedDisk(*this, IID_IVdsAdvancedDisk, "IVdsAdvancedDisk"),
      AsAdvancedDisk2(*this, IID_IVdsAdvancedDisk2, "IVdsAdvancedDisk2"),
      number_(number),
      id_(id) {}

HRESULT VdsDisk::GetProperties(VDS_DISK_PROP* properties) {
    Empty(properties);
    return AsDisk::Call("IVdsDisk::GetProperties", {DiskText(number_)}, [&](EmulatedPc& pc) {
        if (properties == nullptr) return E_POINTER;
        const Disk* const disk = FindDisk(pc.pc, number_);
        if (disk == nullptr) return VDS_E_OBJECT_DELETED;
        properties->id = id_;
        properties->status = VDS_DS_ONLINE;
        properties->health = VDS_H_HEALTHY;
        properties->dwDeviceType = disk->deviceType;
        properties->dwMediaType = FixedMedia;
        properties->ullSize = disk->size;
        properties->ulBytesPerSector = 512;
        properties->ulSectorsPerTrack = 63;
        properties->ulTracksPerCylinder = 255;
        properties->ulFlags = IsDynamic(pc.pc, *disk) ? dynamicDisk : 0;
        properties->BusType = static_cast<VDS_STORAGE_BUS_TYPE>(disk->busType);
        properties->PartitionStyle = VdsStyle(disk->style);
        if (disk->style == PartitionStyle::Mbr) properties->dwSignature = disk->signature;
        if (disk->style == PartitionStyle::Gpt) properties->DiskGuid = disk->guid;
        FillStrings(pc, *disk, *properties);
        return S_OK;
    });
}

HRESULT VdsDisk::QueryExtents(VDS_DISK_EXTENT** extents, LONG* count) {
    Empty(extents);
    Empty(count);
    return AsDisk::Call("IVdsDisk::QueryExtents", {DiskText(number_)}, [&](EmulatedPc& pc) {
        if (extents == nullptr || count == nullptr) return E_POINTER;
        const Disk* const disk = FindDisk(pc.pc, number_);
        if (disk == nullptr) return VDS_E_OBJECT_DELETED;
        const ExtentList list(pc, *disk, id_);
        *extents = LendRecords<VDS_DISK_EXTENT>(pc, "VDS_DISK_EXTENT array", list.Extents().size());
        *count = static_cast<LONG>(list.Extents().size());
        std::copy(list.Extents().begin(), list.Extents().end(), *extents);
        return S_OK;
    });
}

}  // namespace machine
