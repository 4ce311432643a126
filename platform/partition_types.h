// Partition types: every MBR ID and GPT type GUID that the library and the emulated PC know, once.
#pragma once

#include <cstring>

#include "platform/windows_api.h"

// MBR IDs.
inline constexpr BYTE MBR_ID_NTFS = 0x07;          // installable file system: a visible partition
inline constexpr BYTE MBR_ID_OEM_RECOVERY = 0x12;  // OEM service or recovery partition; can have a letter
inline constexpr BYTE MBR_ID_HIDDEN_RECOVERY =
    0x27;                                   // hidden Windows RE or recovery partition; can have a letter
inline constexpr BYTE MBR_ID_CACHE = 0x49;  // cache partition
inline constexpr BYTE MBR_ID_BIOS_HIBERNATION = 0x84;  // BIOS hibernation partition
inline constexpr BYTE MBR_ID_NONE = 0xFF;              // not read

// GPT type GUIDs.
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

// Compares the 16 bytes as they lie in memory.
inline bool IsSameGuid(const GUID& left, const GUID& right) {
    return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}
