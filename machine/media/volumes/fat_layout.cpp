#include "machine/media/volumes/fat_layout.h"

#include <bit>

namespace machine {

namespace {

constexpr uint64_t entrySize = 32;
// A volume with fewer clusters is FAT12 or FAT16.
constexpr uint64_t leastFat16Clusters = 4085;
constexpr uint64_t leastFat32Clusters = 65525;
constexpr uint64_t mostClusters = 0x0FFFFFF5;

bool IsPowerOfTwo(uint64_t number, uint64_t least, uint64_t most) {
    return std::has_single_bit(number) && number >= least && number <= most;
}

}  // namespace

std::optional<FatLayout> ReadFatLayout(const VolumeBytes& bytes) {
    const auto sector = bytes.Read(0, diskSectorSize);
    if (!sector) return std::nullopt;
    const uint64_t sectorSize = Le16(*sector, 11);
    const uint64_t sectorsPerCluster = Byte(*sector, 13);
    const uint64_t reserved = Le16(*sector, 14);
    const uint64_t tables = Byte(*sector, 16);
    const uint64_t rootEntries = Le16(*sector, 17);
    const uint64_t sectors = Le16(*sector, 19) != 0 ? Le16(*sector, 19) : Le32(*sector, 32);
    const bool isFat32 = Le16(*sector, 22) == 0;
    const uint64_t tableSectors = isFat32 ? Le32(*sector, 36) : Le16(*sector, 22);
    if (!IsPowerOfTwo(sectorSize, 512, 4096) || !IsPowerOfTwo(sectorsPerCluster, 1, 128) || reserved == 0 ||
        tables == 0 || tableSectors == 0) {
        return std::nullopt;
    }
    FatLayout layout;
    layout.clusterSize = sectorsPerCluster * sectorSize;
    layout.table = reserved * sectorSize;
    layout.tableSize = tableSectors * sectorSize;
    layout.rootFolder = layout.table + tables * layout.tableSize;
    layout.rootFolderSize = (rootEntries * entrySize + sectorSize - 1) / sectorSize * sectorSize;
    layout.data = layout.rootFolder + layout.rootFolderSize;
    layout.end = sectors * sectorSize;
    if (layout.data > layout.end) return std::nullopt;
    const uint64_t clusters = (layout.end - layout.data) / layout.clusterSize;
    if (clusters > mostClusters || (!isFat32 && clusters >= leastFat32Clusters)) return std::nullopt;
    layout.entryBits = isFat32 ? 32 : clusters < leastFat16Clusters ? 12 : 16;
    layout.entryMask = isFat32 ? 0x0FFFFFFF : (1U << layout.entryBits) - 1;
    layout.clusters = static_cast<uint32_t>(clusters);
    layout.rootCluster = Le32(*sector, 44);
    return layout;
}

}  // namespace machine
