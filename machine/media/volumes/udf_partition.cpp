#include "machine/media/volumes/udf_partition.h"

#include <algorithm>

namespace machine {

namespace {

// The run that has the block, or else the first behind it.
UdfPartition::const_iterator RunOf(const UdfPartition& partition, uint64_t block) {
    return std::partition_point(partition.begin(), partition.end(),
                                [&](const UdfRun& run) { return run.block + run.count <= block; });
}

void Append(UdfPartition& partition, const UdfRun& run) {
    if (run.count == 0) return;
    if (!partition.empty()) {
        UdfRun& last = partition.back();
        if (last.block + last.count == run.block && last.sector + last.count == run.sector) {
            last.count += run.count;
            return;
        }
    }
    partition.push_back(run);
}

}  // namespace

std::optional<std::string> ReadBlocks(const VolumeBytes& bytes, uint64_t blockSize,
                                      const UdfPartition& partition, uint64_t block, uint64_t length) {
    std::string content;
    for (auto run = RunOf(partition, block); content.size() < length; ++run) {
        if (run == partition.end() || run->block > block) return std::nullopt;
        const uint64_t within = block - run->block;
        const uint64_t count = std::min((run->count - within) * blockSize, length - content.size());
        const auto piece = bytes.Read((run->sector + within) * blockSize, count);
        if (!piece) return std::nullopt;
        content += *piece;
        block = run->block + run->count;
    }
    return content;
}

void Append(UdfPartition& partition, uint64_t block, const UdfPartition& other, uint64_t origin,
            uint64_t count) {
    const uint64_t end = origin + count;
    for (auto run = RunOf(other, origin); run != other.end() && run->block < end; ++run) {
        const uint64_t from = std::max(run->block, origin);
        const uint64_t to = std::min(run->block + run->count, end);
        Append(partition, {block + (from - origin), to - from, run->sector + (from - run->block)});
    }
}

UdfPartition WithMovedPackets(const UdfRun& physical, uint64_t packet, std::string_view table) {
    constexpr size_t entrySize = 8;
    constexpr uint32_t leastUnused = 0xFFFFFFF0;
    const UdfPartition original = {physical};
    UdfPartition partition;
    uint64_t done = 0;
    for (size_t at = 0; at + entrySize <= table.size(); at += entrySize) {
        const uint64_t moved = Le32(table, at);
        if (moved >= leastUnused) break;
        if (moved < done || moved >= physical.count) continue;
        Append(partition, done, original, done, moved - done);
        const uint64_t count = std::min(packet, physical.count - moved);
        Append(partition, {moved, count, Le32(table, at + 4)});
        done = moved + count;
    }
    Append(partition, done, original, done, physical.count - done);
    return partition;
}

}  // namespace machine
