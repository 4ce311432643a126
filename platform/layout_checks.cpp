// Compile-time checks against the platform's published tables, for 64 and 32 bits: sizes, offsets,
// identifiers, control codes. Every build compiles this file; it generates no code.

#include <cstddef>

#include "platform/vds.h"

namespace {

constexpr size_t Bits64Or32(size_t wide, size_t narrow) {
    return sizeof(void*) == 8 ? wide : narrow;
}

constexpr unsigned HexDigit(char digit) {
    return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

// The number that a text of hexadecimal digits represents.
constexpr unsigned Hex(const char* text, int digits) {
    unsigned value = 0;
    for (int i = 0; i < digits; i++)
        value = value * 16 + HexDigit(text[i]);
    return value;
}

// Whether a GUID equals its text form, "9c38ed61-d565-4728-aeee-c80952f0ecde".
constexpr bool Is(const GUID& id, const char* text) {
    bool same = id.Data1 == Hex(text, 8) && id.Data2 == Hex(text + 9, 4) && id.Data3 == Hex(text + 14, 4);
    for (size_t i = 0; i < 8; i++)
        same = same && id.Data4[i] == Hex(text + (i < 2 ? 19 : 20) + 2 * i, 2);
    return same;
}

// --- identifiers ---

static_assert(Is(CLSID_VdsLoader, "9c38ed61-d565-4728-aeee-c80952f0ecde"));
static_assert(Is(IID_IEnumVdsObject, "118610b7-8d94-4030-b5b8-500889788e4e"));
static_assert(Is(IID_IVdsServiceLoader, "e0393303-90d4-4a97-ab71-e9b671ee2729"));
static_assert(Is(IID_IVdsService, "0818a8ef-9ba9-40d8-a6f9-e22833cc771e"));
static_assert(Is(IID_IVdsSwProvider, "9aa58360-ce33-4f92-b658-ed24b14425b8"));
static_assert(Is(IID_IVdsPack, "3b69d7f5-9d94-4648-91ca-79939ba263bf"));
static_assert(Is(IID_IVdsDisk, "07e5c822-f00c-47a1-8fce-b244da56fd06"));
static_assert(Is(IID_IVdsAdvancedDisk, "6e6f6b40-977c-4069-bddd-ac710059f8c0"));
static_assert(Is(IID_IVdsAdvancedDisk2, "9723f420-9355-42de-ab66-e31bb15beeac"));
static_assert(Is(IID_IVdsVolumeMF, "ee2d5ded-6236-4169-931d-b9778ce03dc6"));

// --- records of the Virtual Disk Service ---

static_assert(sizeof(VDS_DISK_PROP) == Bits64Or32(128, 112));
static_assert(offsetof(VDS_DISK_PROP, id) == 0);
static_assert(offsetof(VDS_DISK_PROP, status) == 16);
static_assert(offsetof(VDS_DISK_PROP, ReserveMode) == 20);
static_assert(offsetof(VDS_DISK_PROP, health) == 24);
static_assert(offsetof(VDS_DISK_PROP, dwDeviceType) == 28);
static_assert(offsetof(VDS_DISK_PROP, dwMediaType) == 32);
static_assert(offsetof(VDS_DISK_PROP, ullSize) == 40);
static_assert(offsetof(VDS_DISK_PROP, ulBytesPerSector) == 48);
static_assert(offsetof(VDS_DISK_PROP, ulSectorsPerTrack) == 52);
static_assert(offsetof(VDS_DISK_PROP, ulTracksPerCylinder) == 56);
static_assert(offsetof(VDS_DISK_PROP, ulFlags) == 60);
static_assert(offsetof(VDS_DISK_PROP, BusType) == 64);
static_assert(offsetof(VDS_DISK_PROP, PartitionStyle) == 68);
static_assert(offsetof(VDS_DISK_PROP, dwSignature) == 72);
static_assert(offsetof(VDS_DISK_PROP, DiskGuid) == 72);
static_assert(offsetof(VDS_DISK_PROP, pwszDiskAddress) == 88);
static_assert(offsetof(VDS_DISK_PROP, pwszName) == Bits64Or32(96, 92));
static_assert(offsetof(VDS_DISK_PROP, pwszFriendlyName) == Bits64Or32(104, 96));
static_assert(offsetof(VDS_DISK_PROP, pwszAdaptorName) == Bits64Or32(112, 100));
static_assert(offsetof(VDS_DISK_PROP, pwszDevicePath) == Bits64Or32(120, 104));

static_assert(sizeof(VDS_PARTITION_INFO_MBR) == 8);
static_assert(offsetof(VDS_PARTITION_INFO_MBR, partitionType) == 0);
static_assert(offsetof(VDS_PARTITION_INFO_MBR, bootIndicator) == 1);
static_assert(offsetof(VDS_PARTITION_INFO_MBR, recognizedPartition) == 2);
static_assert(offsetof(VDS_PARTITION_INFO_MBR, hiddenSectors) == 4);

static_assert(sizeof(VDS_PARTITION_INFO_GPT) == 112);
static_assert(offsetof(VDS_PARTITION_INFO_GPT, partitionType) == 0);
static_assert(offsetof(VDS_PARTITION_INFO_GPT, partitionId) == 16);
static_assert(offsetof(VDS_PARTITION_INFO_GPT, attributes) == 32);
static_assert(offsetof(VDS_PARTITION_INFO_GPT, name) == 40);

static_assert(sizeof(VDS_PARTITION_PROP) == 144);
static_assert(offsetof(VDS_PARTITION_PROP, PartitionStyle) == 0);
static_assert(offsetof(VDS_PARTITION_PROP, ulFlags) == 4);
static_assert(offsetof(VDS_PARTITION_PROP, ulPartitionNumber) == 8);
static_assert(offsetof(VDS_PARTITION_PROP, ullOffset) == 16);
static_assert(offsetof(VDS_PARTITION_PROP, ullSize) == 24);
static_assert(offsetof(VDS_PARTITION_PROP, Mbr) == 32);
static_assert(offsetof(VDS_PARTITION_PROP, Gpt) == 32);

static_assert(sizeof(VDS_DISK_EXTENT) == 80);
static_assert(offsetof(VDS_DISK_EXTENT, diskId) == 0);
static_assert(offsetof(VDS_DISK_EXTENT, type) == 16);
static_assert(offsetof(VDS_DISK_EXTENT, ullOffset) == 24);
static_assert(offsetof(VDS_DISK_EXTENT, ullSize) == 32);
static_assert(offsetof(VDS_DISK_EXTENT, volumeId) == 40);
static_assert(offsetof(VDS_DISK_EXTENT, plexId) == 56);
static_assert(offsetof(VDS_DISK_EXTENT, memberIdx) == 72);

static_assert(sizeof(VDS_PROVIDER_PROP) == Bits64Or32(64, 56));
static_assert(offsetof(VDS_PROVIDER_PROP, id) == 0);
static_assert(offsetof(VDS_PROVIDER_PROP, pwszName) == 16);
static_assert(offsetof(VDS_PROVIDER_PROP, guidVersionId) == Bits64Or32(24, 20));
static_assert(offsetof(VDS_PROVIDER_PROP, pwszVersion) == Bits64Or32(40, 36));
static_assert(offsetof(VDS_PROVIDER_PROP, type) == Bits64Or32(48, 40));
static_assert(offsetof(VDS_PROVIDER_PROP, ulFlags) == Bits64Or32(52, 44));
static_assert(offsetof(VDS_PROVIDER_PROP, ulStripeSizeFlags) == Bits64Or32(56, 48));
static_assert(offsetof(VDS_PROVIDER_PROP, sRebuildPriority) == Bits64Or32(60, 52));

static_assert(sizeof(VDS_PACK_PROP) == Bits64Or32(32, 28));
static_assert(offsetof(VDS_PACK_PROP, id) == 0);
static_assert(offsetof(VDS_PACK_PROP, pwszName) == 16);
static_assert(offsetof(VDS_PACK_PROP, status) == Bits64Or32(24, 20));
static_assert(offsetof(VDS_PACK_PROP, ulFlags) == Bits64Or32(28, 24));

static_assert(sizeof(VDS_FILE_SYSTEM_PROP) == Bits64Or32(56, 48));
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, type) == 0);
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, volumeId) == 4);
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, ulFlags) == 20);
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, ullTotalAllocationUnits) == 24);
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, ullAvailableAllocationUnits) == 32);
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, ulAllocationUnitSize) == 40);
static_assert(offsetof(VDS_FILE_SYSTEM_PROP, pwszLabel) == Bits64Or32(48, 44));

static_assert(sizeof(CHANGE_ATTRIBUTES_PARAMETERS) == 16);
static_assert(offsetof(CHANGE_ATTRIBUTES_PARAMETERS, style) == 0);
static_assert(offsetof(CHANGE_ATTRIBUTES_PARAMETERS, MbrPartInfo) == 8);
static_assert(offsetof(CHANGE_ATTRIBUTES_PARAMETERS, GptPartInfo) == 8);

static_assert(sizeof(CHANGE_PARTITION_TYPE_PARAMETERS) == 20);
static_assert(offsetof(CHANGE_PARTITION_TYPE_PARAMETERS, style) == 0);
static_assert(offsetof(CHANGE_PARTITION_TYPE_PARAMETERS, MbrPartInfo) == 4);
static_assert(offsetof(CHANGE_PARTITION_TYPE_PARAMETERS, GptPartInfo) == 4);

// --- records and codes of the device controls ---

static_assert(IOCTL_SCSI_GET_ADDRESS == 0x00041018);
static_assert(IOCTL_STORAGE_QUERY_PROPERTY == 0x002D1400);
static_assert(IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS == 0x00560000);
static_assert(IOCTL_DISK_GET_PARTITION_INFO_EX == 0x00070048);
static_assert(PARTITION_STYLE_MBR == 0 && PARTITION_STYLE_GPT == 1 && PARTITION_STYLE_RAW == 2);
static_assert(VDS_PST_UNKNOWN == 0 && VDS_PST_MBR == 1 && VDS_PST_GPT == 2);
static_assert(VDS_OT_PACK == 10 && VDS_OT_VOLUME == 11 && VDS_OT_DISK == 13);
static_assert(VDS_QUERY_SOFTWARE_PROVIDERS == 1 && VDS_QUERY_HARDWARE_PROVIDERS == 2 &&
              VDS_QUERY_VIRTUALDISK_PROVIDERS == 4);
static_assert(VDS_BUS_TYPE_UNKNOWN == 0 && VDS_BUS_TYPE_SCSI == 1 && VDS_BUS_TYPE_ATAPI == 2 &&
              VDS_BUS_TYPE_ATA == 3 && VDS_BUS_TYPE_1394 == 4 && VDS_BUS_TYPE_USB == 7 &&
              VDS_BUS_TYPE_RAID == 8 && VDS_BUS_TYPE_SAS == 10 && VDS_BUS_TYPE_SATA == 11 &&
              VDS_BUS_TYPE_NVME == 17);
static_assert(VDS_DET_UNKNOWN == 0 && VDS_DET_FREE == 1 && VDS_DET_DATA == 2 && VDS_DET_OEM == 3 &&
              VDS_DET_ESP == 4 && VDS_DET_MSR == 5 && VDS_DET_LDM == 6 && VDS_DET_UNUSABLE == 32767);
static_assert(VDS_PS_UNKNOWN == 0 && VDS_PS_ONLINE == 1 && VDS_PS_OFFLINE == 4);
static_assert(VDS_FST_UNKNOWN == 0 && VDS_FST_RAW == 1 && VDS_FST_FAT == 2 && VDS_FST_FAT32 == 3 &&
              VDS_FST_NTFS == 4 && VDS_FST_CDFS == 5 && VDS_FST_UDF == 6 && VDS_FST_EXFAT == 7);
static_assert(VDS_DS_ONLINE == 1 && VDS_H_HEALTHY == 1);

// Result codes by their low halves; all are failures of the service's facility.
constexpr bool IsCode(HRESULT code, unsigned low) {
    return static_cast<unsigned>(code) == 0x80040000 + low;
}
static_assert(IsCode(VDS_E_NOT_SUPPORTED, 0x2400));
static_assert(IsCode(VDS_E_INITIALIZED_FAILED, 0x2401));
static_assert(IsCode(VDS_E_OBJECT_NOT_FOUND, 0x2405));
static_assert(IsCode(VDS_E_OBJECT_DELETED, 0x240B));
static_assert(IsCode(VDS_E_DEVICE_IN_USE, 0x2413));
static_assert(IsCode(VDS_E_INVALID_OPERATION, 0x2415));
static_assert(IsCode(VDS_E_DISK_NOT_INITIALIZED, 0x2417));
static_assert(IsCode(VDS_E_ACCESS_DENIED, 0x2427));
static_assert(IsCode(VDS_E_IO_ERROR, 0x242B));
static_assert(IsCode(VDS_E_VOLUME_NOT_MOUNTED, 0x244F));
static_assert(IsCode(VDS_E_DRIVE_LETTER_NOT_FREE, 0x255C));
static_assert(IsCode(VDS_E_INVALID_DRIVE_LETTER, 0x255E));
static_assert(IsCode(VDS_E_INVALID_OBJECT_TYPE, 0x2562));
static_assert(IsCode(VDS_E_INVALID_PARTITION_TYPE, 0x2565));
static_assert(IsCode(VDS_E_INVALID_QUERY_PROVIDER_FLAG, 0x256C));
static_assert(IsCode(VDS_E_PARTITION_STYLE_MISMATCH, 0x2571));
static_assert(IsCode(VDS_E_PARTITION_MSR, 0x258C));
static_assert(IsCode(VDS_E_PARTITION_LDM, 0x258D));

static_assert(sizeof(SCSI_ADDRESS) == 8);
static_assert(offsetof(SCSI_ADDRESS, Length) == 0);
static_assert(offsetof(SCSI_ADDRESS, PortNumber) == 4);
static_assert(offsetof(SCSI_ADDRESS, PathId) == 5);
static_assert(offsetof(SCSI_ADDRESS, TargetId) == 6);
static_assert(offsetof(SCSI_ADDRESS, Lun) == 7);

static_assert(sizeof(STORAGE_PROPERTY_QUERY) == 12);
static_assert(offsetof(STORAGE_PROPERTY_QUERY, PropertyId) == 0);
static_assert(offsetof(STORAGE_PROPERTY_QUERY, QueryType) == 4);
static_assert(offsetof(STORAGE_PROPERTY_QUERY, AdditionalParameters) == 8);

static_assert(sizeof(STORAGE_DESCRIPTOR_HEADER) == 8);
static_assert(offsetof(STORAGE_DESCRIPTOR_HEADER, Version) == 0);
static_assert(offsetof(STORAGE_DESCRIPTOR_HEADER, Size) == 4);

static_assert(sizeof(STORAGE_DEVICE_DESCRIPTOR) == 40);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, Version) == 0);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, Size) == 4);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, DeviceType) == 8);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, DeviceTypeModifier) == 9);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, RemovableMedia) == 10);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, CommandQueueing) == 11);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, VendorIdOffset) == 12);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, ProductIdOffset) == 16);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, ProductRevisionOffset) == 20);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, SerialNumberOffset) == 24);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, BusType) == 28);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, RawPropertiesLength) == 32);
static_assert(offsetof(STORAGE_DEVICE_DESCRIPTOR, RawDeviceProperties) == 36);

static_assert(sizeof(VOLUME_DISK_EXTENTS) == 32);
static_assert(offsetof(VOLUME_DISK_EXTENTS, NumberOfDiskExtents) == 0);
static_assert(offsetof(VOLUME_DISK_EXTENTS, Extents) == 8);

static_assert(sizeof(DISK_EXTENT) == 24);
static_assert(offsetof(DISK_EXTENT, DiskNumber) == 0);
static_assert(offsetof(DISK_EXTENT, StartingOffset) == 8);
static_assert(offsetof(DISK_EXTENT, ExtentLength) == 16);

static_assert(sizeof(PARTITION_INFORMATION_EX) == 144);
static_assert(offsetof(PARTITION_INFORMATION_EX, PartitionStyle) == 0);
static_assert(offsetof(PARTITION_INFORMATION_EX, StartingOffset) == 8);
static_assert(offsetof(PARTITION_INFORMATION_EX, PartitionLength) == 16);
static_assert(offsetof(PARTITION_INFORMATION_EX, PartitionNumber) == 24);
static_assert(offsetof(PARTITION_INFORMATION_EX, RewritePartition) == 28);
static_assert(offsetof(PARTITION_INFORMATION_EX, Mbr) == 32);
static_assert(offsetof(PARTITION_INFORMATION_EX, Gpt) == 32);

static_assert(offsetof(PARTITION_INFORMATION_MBR, PartitionType) == 0);
static_assert(offsetof(PARTITION_INFORMATION_MBR, BootIndicator) == 1);
static_assert(offsetof(PARTITION_INFORMATION_MBR, RecognizedPartition) == 2);
static_assert(offsetof(PARTITION_INFORMATION_MBR, HiddenSectors) == 4);

static_assert(sizeof(PARTITION_INFORMATION_GPT) == 112);
static_assert(offsetof(PARTITION_INFORMATION_GPT, PartitionType) == 0);
static_assert(offsetof(PARTITION_INFORMATION_GPT, PartitionId) == 16);
static_assert(offsetof(PARTITION_INFORMATION_GPT, Attributes) == 32);
static_assert(offsetof(PARTITION_INFORMATION_GPT, Name) == 40);

// --- structures of device set-up and WMI ---

static_assert(SPDRP_LOCATION_INFORMATION == 13);
static_assert(sizeof(SP_DEVINFO_DATA) == Bits64Or32(32, 28));
static_assert(sizeof(VARIANT) == Bits64Or32(24, 16));

}  // namespace
