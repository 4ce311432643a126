#include "machine/api/devices/device_controls.h"

#include <algorithm>
#include <cstring>

#include "machine/api/devices/partition_records.h"

namespace machine {

namespace {

// Copies as much of the record as fits and sets the byte count.
void Fill(DeviceRequest& request, const void* record, size_t size) {
    const size_t filled = std::min(size, request.output.size());
    if (filled > 0) std::memcpy(request.output.data(), record, filled);
    request.returned = static_cast<DWORD>(filled);
}

// Copies a record that must fit completely.
uint32_t FillWhole(DeviceRequest& request, const void* record, size_t size) {
    if (request.output.size() < size) return ERROR_INSUFFICIENT_BUFFER;
    Fill(request, record, size);
    return ERROR_SUCCESS;
}

// Error 1 for a volume without a disk; otherwise the address, or the error from the disk's facts.
uint32_t ScsiGetAddress(DeviceRequest& request) {
    if (request.device.disk == nullptr) return ERROR_INVALID_FUNCTION;
    const Fact<ScsiAddress>& fact = request.device.disk->scsiAddress;
    if (!fact.value) return fact.error;
    const SCSI_ADDRESS address = {sizeof(SCSI_ADDRESS), fact.value->port, fact.value->path,
                                  fact.value->target, fact.value->lun};
    return FillWhole(request, &address, sizeof address);
}

// All bytes that the device answers: the fixed part, the product's name and zeros, or as much of them as it
// has.
std::string StorageDescriptorOf(const Disk& disk) {
    constexpr std::string_view product("Emulated disk\0",
                                       14);  // more than the fixed part, as with most devices
    STORAGE_DEVICE_DESCRIPTOR descriptor{};
    static_assert(sizeof descriptor + product.size() == usualDescriptorSize);
    descriptor.Version = sizeof descriptor;
    descriptor.Size = disk.storageDescriptorSize.value_or(usualDescriptorSize);
    descriptor.CommandQueueing = TRUE;
    descriptor.ProductIdOffset = sizeof descriptor;
    // Also reports values that the headers' enumeration lacks.
    std::memcpy(&descriptor.BusType, &*disk.storageBusType.value, sizeof(uint32_t));
    std::string whole(reinterpret_cast<const char*>(&descriptor), sizeof descriptor);
    whole += product;
    whole.resize(descriptor.Size);
    return whole;
}

// What a buffer receives that the descriptor does not fit into.
uint32_t FillShort(DeviceRequest& request, std::string_view descriptor) {
    const Switches::ShortDescriptor answer = request.pc.facts.switches.shortDescriptor;
    if (answer == Switches::ShortDescriptor::Fails) return ERROR_INSUFFICIENT_BUFFER;
    Fill(request, descriptor.data(), descriptor.size());
    return answer == Switches::ShortDescriptor::MoreData ? ERROR_MORE_DATA : ERROR_SUCCESS;
}

// The device descriptor. For one that does not fit the PC's switch decides: as much of it as does, so that a
// first query with 8 bytes or more returns its total size, or the same with error 234, or error 122. Error 87
// for less than 8 bytes or an incomplete query, 50 for another property, 1 for a volume without a disk.
uint32_t StorageQueryProperty(DeviceRequest& request) {
    if (request.device.disk == nullptr) return ERROR_INVALID_FUNCTION;
    STORAGE_PROPERTY_QUERY query;
    if (request.input.size() < sizeof query) return ERROR_INVALID_PARAMETER;
    std::memcpy(&query, request.input.data(), sizeof query);
    if (query.PropertyId != StorageDeviceProperty) return ERROR_NOT_SUPPORTED;
    const Fact<uint32_t>& busType = request.device.disk->storageBusType;
    if (!busType.value) return busType.error;
    if (query.QueryType == PropertyExistsQuery) return ERROR_SUCCESS;
    if (query.QueryType != PropertyStandardQuery) return ERROR_NOT_SUPPORTED;
    if (request.output.size() < sizeof(STORAGE_DESCRIPTOR_HEADER)) return ERROR_INVALID_PARAMETER;
    const std::string descriptor = StorageDescriptorOf(*request.device.disk);
    if (request.output.size() < descriptor.size()) return FillShort(request, descriptor);
    Fill(request, descriptor.data(), descriptor.size());
    return ERROR_SUCCESS;
}

// The extents of the volume: the partition's own, then the further ones. Error 122 if not even one fits;
// 234 if some do not, with the total count and those that fit filled in. Error 1 if there is no extent (a
// disc or a network drive), and for a physical disk.
uint32_t VolumeGetDiskExtents(DeviceRequest& request) {
    if (request.device.volume == nullptr) return ERROR_INVALID_FUNCTION;
    std::vector<Extent> extents = request.device.volume->furtherExtents;
    if (request.device.partition != nullptr) {
        const Partition& partition = *request.device.partition;
        extents.insert(extents.begin(), {request.device.disk->number, partition.offset, partition.size});
    }
    if (extents.empty()) return ERROR_INVALID_FUNCTION;
    if (request.output.size() < sizeof(VOLUME_DISK_EXTENTS)) return ERROR_INSUFFICIENT_BUFFER;

    constexpr size_t start = offsetof(VOLUME_DISK_EXTENTS, Extents);
    const size_t fitting = std::min(extents.size(), (request.output.size() - start) / sizeof(DISK_EXTENT));
    std::vector<char> record(start + fitting * sizeof(DISK_EXTENT));
    const DWORD count = static_cast<DWORD>(extents.size());
    std::memcpy(record.data(), &count, sizeof count);
    for (size_t i = 0; i < fitting; ++i) {
        DISK_EXTENT extent{};
        extent.DiskNumber = extents[i].disk;
        extent.StartingOffset.QuadPart = static_cast<LONGLONG>(extents[i].offset);
        extent.ExtentLength.QuadPart = static_cast<LONGLONG>(extents[i].size);
        std::memcpy(record.data() + start + i * sizeof extent, &extent, sizeof extent);
    }
    Fill(request, record.data(), record.size());
    return fitting < extents.size() ? ERROR_MORE_DATA : ERROR_SUCCESS;
}

// A volume's partition, or an entire physical disk as partition 0. Error 1 for a volume without a disk and
// for a dynamic data volume of a GPT disk, 122 for a short buffer.
uint32_t DiskGetPartitionInfoEx(DeviceRequest& request) {
    if (request.device.disk == nullptr) return ERROR_INVALID_FUNCTION;
    const Disk& disk = *request.device.disk;
    PARTITION_INFORMATION_EX record;
    if (request.device.partition == nullptr) {
        record = WholeDiskRecord(disk);
    } else if (IsDynamicDataOfGpt(disk, *request.device.partition)) {
        return ERROR_INVALID_FUNCTION;
    } else {
        record = PartitionRecord(disk, *request.device.partition);
    }
    return FillWhole(request, &record, sizeof record);
}

// The disk's partition table. Error 1 unless the device is a physical disk, 122 for a short buffer.
uint32_t DiskGetDriveLayoutEx(DeviceRequest& request) {
    if (request.device.disk == nullptr || request.device.volume != nullptr) return ERROR_INVALID_FUNCTION;
    const std::vector<char> layout = DriveLayoutRecord(*request.device.disk);
    return FillWhole(request, layout.data(), layout.size());
}

// The size of a physical disk and of its sectors; cylinders and the rest are as on every large disk. Error 1
// for a volume, 122 for a short buffer.
uint32_t DiskGetDriveGeometryEx(DeviceRequest& request) {
    if (request.device.disk == nullptr || request.device.volume != nullptr) return ERROR_INVALID_FUNCTION;
    constexpr DWORD tracks = 255;
    constexpr DWORD sectors = 63;
    const Disk& disk = *request.device.disk;
    DISK_GEOMETRY_EX record{};
    record.Geometry.MediaType = FixedMedia;
    record.Geometry.TracksPerCylinder = tracks;
    record.Geometry.SectorsPerTrack = sectors;
    record.Geometry.BytesPerSector = disk.sectorSize;
    record.Geometry.Cylinders.QuadPart =
        static_cast<LONGLONG>(disk.size / (uint64_t{tracks} * sectors * disk.sectorSize));
    record.DiskSize.QuadPart = static_cast<LONGLONG>(disk.size);
    return FillWhole(request, &record, sizeof record);
}

constexpr DeviceControl controls[] = {
    {IOCTL_SCSI_GET_ADDRESS, "IOCTL_SCSI_GET_ADDRESS", ScsiGetAddress},
    {IOCTL_STORAGE_QUERY_PROPERTY, "IOCTL_STORAGE_QUERY_PROPERTY", StorageQueryProperty},
    {IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, "IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", VolumeGetDiskExtents},
    {IOCTL_DISK_GET_PARTITION_INFO_EX, "IOCTL_DISK_GET_PARTITION_INFO_EX", DiskGetPartitionInfoEx},
    {IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", DiskGetDriveGeometryEx},
    {IOCTL_DISK_GET_DRIVE_LAYOUT_EX, "IOCTL_DISK_GET_DRIVE_LAYOUT_EX", DiskGetDriveLayoutEx},
};

}  // namespace

const DeviceControl* FindDeviceControl(DWORD code) {
    const auto found = std::find_if(std::begin(controls), std::end(controls),
                                    [&](const DeviceControl& control) { return control.code == code; });
    return found != std::end(controls) ? found : nullptr;
}

}  // namespace machine
