#include "machine/api/vds/volume.h"

#include "machine/api/com/memory.h"

namespace machine {

namespace {

constexpr ULONG allocationUnit = 4096;

struct FileSystemRow {
    std::string_view name;
    VDS_FILE_SYSTEM_TYPE type;
};

constexpr FileSystemRow fileSystems[] = {
    {"RAW", VDS_FST_RAW},   {"FAT", VDS_FST_FAT},     {"FAT12", VDS_FST_FAT},
    {"FAT16", VDS_FST_FAT}, {"FAT32", VDS_FST_FAT32}, {"NTFS", VDS_FST_NTFS},
    {"CDFS", VDS_FST_CDFS}, {"UDF", VDS_FST_UDF},     {"exFAT", VDS_FST_EXFAT},
};

VDS_FILE_SYSTEM_TYPE TypeOf(std::string_view fileSystem) {
    for (const FileSystemRow& row : fileSystems) {
        if (row.name == fileSystem) return row.type;
    }
    return VDS_FST_UNKNOWN;
}

// The contents of an unformatted partition whose type can hold a volume.
Volume RawVolume() {
    Volume volume;
    volume.fileSystem = "RAW";
    return volume;
}

}  // namespace

HRESULT VdsVolume::GetFileSystemProperties(VDS_FILE_SYSTEM_PROP* properties) {
    Empty(properties);
    return Call("IVdsVolumeMF::GetFileSystemProperties",
                {DiskText(place_.disk), std::to_string(place_.offset)}, [&](EmulatedPc& pc) {
                    if (properties == nullptr) return E_POINTER;
                    Disk* const disk = FindDisk(pc.facts, place_.disk);
                    const Partition* const partition =
                        disk != nullptr ? FindPartition(*disk, place_.offset) : nullptr;
                    if (partition == nullptr || VdsObjects::Of(pc).FindVolume(place_) != this)
                        return VDS_E_OBJECT_DELETED;
                    const Volume volume = partition->volume.value_or(RawVolume());
                    if (volume.label.error != 0) return HRESULT_FROM_WIN32(volume.label.error);
                    properties->type = TypeOf(volume.fileSystem);
                    properties->volumeId = id_;
                    properties->ulAllocationUnitSize = allocationUnit;
                    properties->ullTotalAllocationUnits = partition->size / allocationUnit;
                    if (volume.label.value) {
                        properties->pwszLabel =
                            LendText(pc, "VDS_FILE_SYSTEM_PROP label", *volume.label.value);
                    }
                    return S_OK;
                });
}

}  // namespace machine
