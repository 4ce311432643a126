// The entries of an MBR and of the links of its logical partitions, where they are on the disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "machine/media/image/image_file.h"

namespace machine {

// In the sector of an MBR or of a link, which has the same format.
inline constexpr size_t mbrSlots = 4;
inline constexpr size_t mbrFirstEntry = 446;
inline constexpr size_t mbrEntrySize = 16;
// In an entry, whose first byte is the flag.
inline constexpr size_t mbrTypeAt = 4;
inline constexpr size_t mbrStartAt = 8;
inline constexpr size_t mbrLengthAt = 12;

// Types that are no partition's on an MBR disk of Windows.
inline constexpr uint8_t mbrUnused = 0x00;
inline constexpr uint8_t mbrExtendedLinux = 0x85;
inline constexpr uint8_t mbrProtective = 0xEE;

struct MbrEntry {
    uint64_t place = 0;     // of its 16 bytes
    uint64_t offset = 0;    // of the partition, in bytes
    uint64_t size = 0;      // bytes
    uint8_t indicator = 0;  // 0x80 is active, 0x00 inactive
    uint8_t type = 0;
    bool isLogical = false;
    uint32_t slot = 0;  // 1 to 4 in the MBR; logical partitions from 5, in the order of their links

    bool IsActive() const { return indicator == 0x80; }
    bool IsExtended() const;  // of a type that Windows knows
    bool IsContainer() const { return IsExtended() || type == mbrExtendedLinux; }
};

struct MbrEntries {
    // The used ones: those of the MBR in their order, extended partitions among them, then those of the
    // logical partitions, as far as their chains can be followed.
    std::vector<MbrEntry> entries = {};
    // Chains that leave their extended partition, form a circle, reach a sector that is not a link, or are
    // longer than on any disk.
    std::vector<std::string> problems = {};
};

// The first sector of the image; empty if that is not an MBR, or cannot be read.
std::string MbrSector(const ImageFile& image);

// Whether the MBR has an entry that begins with the medium itself. Writers of UDF and of bootable discs put
// such a table before a volume of the whole medium, for systems that expect one.
bool NamesWholeMedium(const std::string& mbrSector);

// None without an MBR. The table counts in sectors of that size.
MbrEntries MbrEntriesOf(const ImageFile& image, uint64_t sectorSize);

}  // namespace machine
