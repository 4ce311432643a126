// The partitions of a UDF volume: which sector a block of one of them is recorded in.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/media/image/volume_bytes.h"

namespace machine {

// Blocks of a partition that are recorded one after another. Blocks and sectors have the same size.
struct UdfRun {
    uint64_t block = 0;  // the first, as the partition counts
    uint64_t count = 0;
    uint64_t sector = 0;  // of the first, as the volume counts
};

// In the order of their blocks. A block outside of all runs is not recorded.
using UdfPartition = std::vector<UdfRun>;

// Bytes from the start of a block on; nothing if any of them is not recorded.
std::optional<std::string> ReadBlocks(const VolumeBytes& bytes, uint64_t blockSize,
                                      const UdfPartition& partition, uint64_t block, uint64_t length);

// Lets `count` blocks of a partition, from `block` on, be those of another one, from `origin` on. They must
// be behind all that it has so far.
void Append(UdfPartition& partition, uint64_t block, const UdfPartition& other, uint64_t origin,
            uint64_t count);

// A partition of which some packets have been moved: the table has, for each, its first block and the first
// sector that replaces it, 4 bytes each and in order.
UdfPartition WithMovedPackets(const UdfRun& physical, uint64_t packet, std::string_view table);

}  // namespace machine
