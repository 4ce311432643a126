// The clusters of a FAT or exFAT volume, and the allocation table that links them to chains.
#pragma once

#include <optional>
#include <string>

#include "machine/media/image/volume_bytes.h"

namespace machine {

inline constexpr uint32_t firstCluster = 2;

// Offsets and sizes in bytes from the start of the volume.
struct ClusterLayout {
    uint32_t entryBits = 0;  // of the allocation table: 12, 16 or 32
    uint32_t entryMask = 0;  // the bits of an entry that are a number
    uint32_t clusters = 0;
    uint64_t clusterSize = 0;
    uint64_t table = 0;
    uint64_t data = 0;  // cluster 2
    uint64_t end = 0;   // of the volume
};

bool IsCluster(const ClusterLayout& layout, uint64_t number);

// The bytes of the chain that starts at `first`: `length` bytes, or all up to the last cluster, which must
// end before `most` bytes. Nothing if the chain is shorter, leaves the volume or returns to itself.
std::optional<std::string> ReadChain(const VolumeBytes& bytes, const ClusterLayout& layout, uint64_t first,
                                     uint64_t length);
std::optional<std::string> ReadWholeChain(const VolumeBytes& bytes, const ClusterLayout& layout,
                                          uint64_t first, uint64_t most);
// `length` bytes from the start of a cluster on; nothing if they leave the volume.
std::optional<std::string> ReadClusters(const VolumeBytes& bytes, const ClusterLayout& layout, uint64_t first,
                                        uint64_t length);

}  // namespace machine
