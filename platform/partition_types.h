// Partition types: one row for each MBR ID and each GPT type GUID. The library, the emulated PC and the tool
// read the same rows: to add a type, add its row.
#pragma once

#include "platform/vds.h"
#include "platform/windows_api.h"

// MBR IDs that the code refers to by name.
inline constexpr BYTE MBR_ID_NTFS = 0x07;              // installable file system: a visible partition
inline constexpr BYTE MBR_ID_OEM_RECOVERY = 0x12;      // OEM service or recovery partition
inline constexpr BYTE MBR_ID_HIDDEN_RECOVERY = 0x27;   // hidden Windows RE or recovery partition
inline constexpr BYTE MBR_ID_CACHE = 0x49;             // cache partition
inline constexpr BYTE MBR_ID_BIOS_HIBERNATION = 0x84;  // BIOS hibernation partition
inline constexpr BYTE MBR_ID_NONE = 0xFF;              // no ID was read

// GPT type GUIDs that the code refers to by name.
inline constexpr GUID ORVOBOOT_GUID = {
    0x5b8e2a91, 0x3c7d, 0x4f06, {0x9e, 0x14, 0x72, 0xd0, 0xc6, 0xa4, 0xb3, 0xe5}};
inline constexpr GUID EXPCACHE_PARTITION_GUID = {
    0xb8cb5058, 0xc187, 0x4719, {0xba, 0xf0, 0x37, 0x9c, 0xa2, 0xd4, 0xc9, 0x7e}};
inline constexpr GUID PARTITION_SYSTEM_GUID = {
    0xc12a7328, 0xf81f, 0x11d2, {0xba, 0x4b, 0x00, 0xa0, 0xc9, 0x3e, 0xc9, 0x3b}};
inline constexpr GUID PARTITION_MSFT_RESERVED_GUID = {
    0xe3c9e316, 0x0b5c, 0x4db8, {0x81, 0x7d, 0xf9, 0x2d, 0xf0, 0x02, 0x15, 0xae}};
inline constexpr GUID PARTITION_BASIC_DATA_GUID = {
    0xebd0a0a2, 0xb9e5, 0x4433, {0x87, 0xc0, 0x68, 0xb6, 0xb7, 0x26, 0x99, 0xc7}};
inline constexpr GUID PARTITION_MSFT_RECOVERY_GUID = {
    0xde94bba4, 0x06d1, 0x4d40, {0xa1, 0x6a, 0xbf, 0xd5, 0x01, 0x79, 0xd6, 0xac}};
inline constexpr GUID PARTITION_LDM_METADATA_GUID = {
    0x5808c8aa, 0x7e8f, 0x42e0, {0x85, 0xd2, 0xe1, 0xe9, 0x04, 0x34, 0xcf, 0xb3}};
inline constexpr GUID PARTITION_LDM_DATA_GUID = {
    0xaf9b60a0, 0x1431, 0x4f62, {0xbc, 0x68, 0x33, 0x11, 0x71, 0x4a, 0x69, 0xad}};

// What is known about a type: a BYTE for an MBR ID, a GUID for a GPT type.
// A row begins with its type; eight bytes of padding are worth that.
// NOLINTBEGIN(clang-analyzer-optin.performance.Padding)
template <typename Type>
struct PartitionType {
    Type type;
    const char* words = nullptr;  // the type's name in reports; null: reported as unknown
    const char* role = nullptr;   // what its type alone says a partition is for; null: the contents decide
    VDS_DISK_EXTENT_TYPE extent = VDS_DET_UNKNOWN;  // as the Virtual Disk Service reports it
    bool letterable = false;                        // CVDSPartition::SetDriveLetter accepts it
    bool hidden = false;    // CVDSPartition::IsNeedHidePartition; GPT only, on MBR the label decides
    bool extended = false;  // an extended partition, which only holds logical ones; MBR only
};
// NOLINTEND(clang-analyzer-optin.performance.Padding)

inline constexpr PartitionType<BYTE> mbrPartitionTypes[] = {
    {.type = 0x01, .extent = VDS_DET_DATA},  // FAT12
    {.type = 0x04, .extent = VDS_DET_DATA},  // FAT16 below 32 MiB
    {.type = 0x05, .extended = true},
    {.type = 0x06, .extent = VDS_DET_DATA},  // FAT16
    {.type = MBR_ID_NTFS, .words = "NTFS", .extent = VDS_DET_DATA},
    {.type = 0x0B, .extent = VDS_DET_DATA},  // FAT32
    {.type = 0x0C, .extent = VDS_DET_DATA},  // FAT32, LBA
    {.type = 0x0E, .extent = VDS_DET_DATA},  // FAT16, LBA
    {.type = 0x0F, .extended = true},        // LBA
    {.type = MBR_ID_OEM_RECOVERY,
     .words = "OEM recovery",
     .role = "recovery",
     .extent = VDS_DET_OEM,
     .letterable = true},
    {.type = MBR_ID_HIDDEN_RECOVERY,
     .words = "hidden recovery",
     .role = "recovery",
     .extent = VDS_DET_OEM,
     .letterable = true},
    {.type = 0x42, .extent = VDS_DET_LDM},  // dynamic disk
    {.type = MBR_ID_CACHE, .words = "cache", .role = "cache"},
    {.type = MBR_ID_BIOS_HIBERNATION, .words = "hibernation", .extent = VDS_DET_OEM},
    {.type = 0xA0, .extent = VDS_DET_OEM},  // hibernation and diagnostics of several makers
    {.type = 0xDE, .extent = VDS_DET_OEM},
    {.type = 0xFE, .extent = VDS_DET_OEM},
};

inline constexpr PartitionType<GUID> gptPartitionTypes[] = {
    {.type = ORVOBOOT_GUID,
     .words = "maker's boot",
     .role = "maker's boot",
     .letterable = true,
     .hidden = true},
    {.type = EXPCACHE_PARTITION_GUID, .words = "cache", .role = "cache"},
    {.type = PARTITION_SYSTEM_GUID,
     .words = "EFI system",
     .role = "EFI system",
     .extent = VDS_DET_ESP,
     .letterable = true,
     .hidden = true},
    {.type = PARTITION_MSFT_RESERVED_GUID,
     .words = "Microsoft reserved",
     .extent = VDS_DET_MSR,
     .hidden = true},
    {.type = PARTITION_BASIC_DATA_GUID, .words = "basic data", .extent = VDS_DET_DATA, .letterable = true},
    {.type = PARTITION_MSFT_RECOVERY_GUID,
     .words = "Windows recovery",
     .extent = VDS_DET_OEM,
     .letterable = true},
    {.type = PARTITION_LDM_METADATA_GUID, .extent = VDS_DET_LDM},
    {.type = PARTITION_LDM_DATA_GUID, .extent = VDS_DET_LDM},
};

// The row of a type in a table; for any other type a row of which nothing is known.
template <typename Type, size_t Count>
PartitionType<Type> RowOf(const PartitionType<Type> (&rows)[Count], const Type& type) {
    for (const PartitionType<Type>& row : rows)
        if (row.type == type) return row;
    return {.type = type};
}

inline PartitionType<BYTE> PartitionTypeOf(BYTE id) {
    return RowOf(mbrPartitionTypes, id);
}
inline PartitionType<GUID> PartitionTypeOf(const GUID& guid) {
    return RowOf(gptPartitionTypes, guid);
}
