// The disk as a whole: its properties and extents.
#include "machine/api/vds/disk.h"

#include <algorithm>

#include "machine/api/com/memory.h"
#include "machine/api/vds/extents.h"
#include "machine/api/vds/pack.h"
#include "machine/facts/extent_type.h"

namespace machine {

namespace {

constexpr ULONG dynamicDisk = 0x2000;

std::string AddressOf(const Disk& disk) {
    const ScsiAddress address = disk.scsiAddress.value.value_or(ScsiAddress());
    return "Port" + std::to_string(address.port) + "Path" + std::to_string(address.path) + "Target" +
           std::to_string(address.target) + "Lun" + std::to_string(address.lun);
}

// The path of the device interface: the PNP device id with '#' for each backslash, then the class of disks.
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
        const Disk* const disk = FindDisk(pc.facts, number_);
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
        properties->ulFlags = IsDynamic(pc.facts, *disk) ? dynamicDisk : 0;
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
        const Disk* const disk = FindDisk(pc.facts, number_);
        if (disk == nullptr) return VDS_E_OBJECT_DELETED;
        const std::vector<VDS_DISK_EXTENT> list = ExtentsOf(pc, *disk, id_);
        *extents = LendRecords<VDS_DISK_EXTENT>(pc, "VDS_DISK_EXTENT array", list.size());
        *count = static_cast<LONG>(list.size());
        std::copy(list.begin(), list.end(), *extents);
        return S_OK;
    });
}

}  // namespace machine
