// Checks that the partitions of a table are plausible: inside the disk, without overlap, reachable.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/media/device/image_file.h"
#include "machine/media/table/region.h"

namespace machine {

// The ranges of the disk that a table allocates.
struct TableLayout {
    Region space;  // the space between the parts of the table itself; name unused
    std::vector<Region> primaries;
    std::vector<Region> extended;  // containers, which are among the primaries
    std::vector<Region> logicals;
};

// Throws ImageError for an empty partition, one beyond the end of the file (which is truncated then) or on
// the table itself, and for two that overlap.
void CheckLayout(const ImageFile& image, const TableLayout& layout);

// Throws ImageError if a GPT header claims more entries than any disk has. Reading them could take as much
// memory as the file is long.
void CheckGptLength(const ImageFile& image);

// Throws ImageError if the MBR entry in that slot, 0 to 3, is neither active (0x80) nor inactive (0x00):
// firmware handles such a table unpredictably. `name` is the name of the partition in the message.
void CheckBootIndicator(const ImageFile& image, size_t slot, const std::string& name);

}  // namespace machine
