// The entries of an MBR and of the links of its logical partitions, where they are on the disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "machine/media/device/image_file.h"
#include "machine/media/table/region.h"

namespace machine {

// In the sector of an MBR or of a link, which has the same format.
inline constexpr size_t mbrFirstEntry = 446;
inline constexpr size_t mbrEntrySize = 16;

struct MbrEntry {
    uint64_t place = 0;   // of its 16 bytes; the flag is the first, the type the fifth
    uint64_t offset = 0;  // of the partition
    bool isActive = false;
    uint8_t type = 0;
};

inline constexpr uint64_t mbrTypeAt = 4;  // behind `place`

// The used entries: those of the MBR in their order, the extended partition among them, then those of its
// logical partitions. Empty without an MBR. Throws ImageError as LogicalLinksOf.
std::vector<MbrEntry> MbrEntriesOf(const ImageFile& image);

// The offsets of the links of the logical partitions, in the order of their chain. Throws ImageError if the
// chain leaves the extended partition, forms a cycle or reaches a sector that is not a link.
std::vector<uint64_t> LogicalLinksOf(const ImageFile& image, const Region& extended);

}  // namespace machine
