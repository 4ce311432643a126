#include "machine/media/volumes/cluster_chain.h"

#include <algorithm>
#include <bit>

namespace machine {

namespace {

// The allocation-table entry of the cluster: the next cluster, or an end mark.
std::optional<uint32_t> Next(const VolumeBytes& bytes, const ClusterLayout& layout, uint64_t cluster) {
    const uint64_t at = layout.table + cluster * layout.entryBits / 8;
    const auto entry = bytes.Read(at, layout.entryBits == 32 ? 4 : 2);
    if (!entry) return std::nullopt;
    const bool isUpperHalf = layout.entryBits == 12 && cluster % 2 != 0;
    return (isUpperHalf ? Le32(*entry, 0) >> 4U : Le32(*entry, 0)) & layout.entryMask;
}

}  // namespace

bool IsCluster(const ClusterLayout& layout, uint64_t number) {
    return number >= firstCluster && number - firstCluster < layout.clusters;
}

std::optional<std::string> ReadClusters(const VolumeBytes& bytes, const ClusterLayout& layout, uint64_t first,
                                        uint64_t length) {
    const uint64_t last = first + (std::max<uint64_t>(length, 1) - 1) / layout.clusterSize;
    if (!IsCluster(layout, first) || !IsCluster(layout, last)) return std::nullopt;
    return bytes.Read(layout.data + (first - firstCluster) * layout.clusterSize, length);
}

std::optional<std::string> ReadChain(const VolumeBytes& bytes, const ClusterLayout& layout, uint64_t first,
                                     uint64_t length) {
    std::string content;
    // Detects a cycle with a single mark that is moved after 1, 2, 4, 8 and so on clusters: a chain that
    // returns to it is a cycle, and any cycle eventually fits between two moves.
    uint64_t mark = 0;
    uint64_t passed = 0;
    for (uint64_t cluster = first; content.size() < length;) {
        if (cluster == mark) return std::nullopt;
        if (std::has_single_bit(++passed)) mark = cluster;
        const auto piece = ReadClusters(bytes, layout, cluster,
                                        std::min<uint64_t>(layout.clusterSize, length - content.size()));
        if (!piece) return std::nullopt;
        const auto next = Next(bytes, layout, cluster);
        if (!next) return std::nullopt;
        content += *piece;
        cluster = *next;
    }
    return content;
}

std::optional<std::string> ReadWholeChain(const VolumeBytes& bytes, const ClusterLayout& layout,
                                          uint64_t first, uint64_t most) {
    const uint64_t endMark = layout.entryMask - 7;
    uint64_t length = 0;
    for (uint64_t cluster = first; cluster < endMark;) {
        length += layout.clusterSize;
        if (!IsCluster(layout, cluster) || length > most) return std::nullopt;
        const auto next = Next(bytes, layout, cluster);
        if (!next) return std::nullopt;
        cluster = *next;
    }
    return ReadChain(bytes, layout, first, length);
}

}  // namespace machine
