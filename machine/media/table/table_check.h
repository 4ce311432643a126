// Whether the partitions of a table can be true: inside the disk, apart from each other, reachable.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/media/device/image_file.h"

namespace machine {

// A stretch of the disk, in bytes, and what it is called in a message.
struct Region {
    std::string name;  // "partition 2"
    uint64_t offset = 0;
    uint64_t size = 0;
};

// The stretches of the disk that a table gives away.
struct TableLayout {
    Region space;  // what lies between the parts of the table itself; name unused
    std::vector<Region> primaries;
    std::vector<Region> extended;  // containers, which lie among the primaries
    std::vector<Region> logicals;
};

// Throws ImageError for a partition without a length, one that leaves the file (which is truncated then) or
// lies on the table, and for two that overlap.
void CheckLayout(const ImageFile& image, const TableLayout& layout);

// Throws ImageError when a header of a GUID partition table claims more entries than any disk has: reading
// them would take as much memory, up to the size of the file.
void CheckGptLength(const ImageFile& image);

// Throws ImageError when the MBR's entry in that slot, 0 to 3, is neither active (0x80) nor not (0x00): what
// a PC starts from such a table is anybody's guess. `name` is the partition's in the message.
void CheckBootIndicator(const ImageFile& image, size_t slot, const std::string& name);

// Follows the chain of logical partitions that starts with the extended partition. Throws ImageError when it
// leaves the extended partition, runs in a circle or meets a sector that is no link.
void CheckChain(const ImageFile& image, const Region& extended);

}  // namespace machine
