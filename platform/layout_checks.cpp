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
