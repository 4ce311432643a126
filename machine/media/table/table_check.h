// Checks that the partitions of a table are plausible: inside the disk, without overlap, reachable.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/media/table/region.h"

namespace machine {

// The ranges of the disk that a table allocates.
struct TableLayout {
    uint64_t diskSize = 0;  // bytes
    Region space;           // between the parts of the table itself; name unused
    std::vector<Region> primaries;
    std::vector<Region> extended;  // containers, which are not among the primaries
    std::vector<Region> logicals;
};

// A sentence for each empty partition, each beyond the end of the disk (whose image is truncated then) or on
// the table itself, and each two that overlap.
std::vector<std::string> LayoutProblems(const TableLayout& layout);

}  // namespace machine
