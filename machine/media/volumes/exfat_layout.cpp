#include "machine/media/volumes/exfat_layout.h"

#include <bit>

namespace machine {

namespace {

constexpr uint64_t bootSectors = 11;  // that the checksum in the next one covers
constexpr uint64_t leastTableSector = 24;
constexpr uint64_t mostClusters = 0xFFFFFFF5;

bool IsBootSector(std::string_view sector) {
    return sector.starts_with(
               "\xEB\x76\x90"
               "EXFAT   ") &&
           sector.substr(11, 53).find_first_not_of('\0') == std::string_view::npos &&
           sector.substr(510, 2) == "\x55\xAA";
}

// Flags and the share in use change without a new checksum.
bool IsUnchecked(size_t at) {
    return at == 106 || at == 107 || at == 112;
}

bool HasChecksum(const VolumeBytes& bytes, uint64_t sectorSize) {
    const auto boot = bytes.Read(0, (bootSectors + 1) * sectorSize);
    if (!boot) return false;
    uint32_t sum = 0;
    for (size_t at = 0; at < bootSectors * sectorSize; ++at) {
        if (!IsUnchecked(at)) sum = std::rotr(sum, 1) + Byte(*boot, at);
    }
    for (size_t at = bootSectors * sectorSize; at < boot->size(); at += 4) {
        if (Le32(*boot, at) != sum) return false;
    }
    return true;
}

}  // namespace

std::optional<ExfatLayout> ReadExfatLayout(const VolumeBytes& bytes) {
    const auto sector = bytes.Read(0, diskSectorSize);
    if (!sector || !IsBootSector(*sector)) return std::nullopt;
    const uint64_t sectors = Le64(*sector, 72);
    const uint64_t tableSector = Le32(*sector, 80);
    const uint64_t tableSectors = Le32(*sector, 84);
    const uint64_t dataSector = Le32(*sector, 88);
    const uint64_t clusters = Le32(*sector, 92);
    const uint32_t sectorShift = Byte(*sector, 108);
    const uint32_t clusterShift = Byte(*sector, 109);
    const uint64_t tables = Byte(*sector, 110);
    const bool usesSecondTable = tables == 2 && (Le16(*sector, 106) & 1) != 0;
    if (sectorShift < 9 || sectorShift > 12 || clusterShift > 25 - sectorShift || tables == 0 || tables > 2)
        return std::nullopt;
    const bool isInOrder = tableSector >= leastTableSector && clusters <= mostClusters &&
                           (clusters + 2) * 4 <= tableSectors << sectorShift &&
                           tableSector + tables * tableSectors <= dataSector &&
                           dataSector + (clusters << clusterShift) <= sectors &&
                           sectors <= UINT64_MAX >> sectorShift;
    if (!isInOrder || !HasChecksum(bytes, uint64_t{1} << sectorShift)) return std::nullopt;
    ExfatLayout layout;
    layout.entryBits = 32;
    layout.entryMask = 0xFFFFFFFF;
    layout.clusters = static_cast<uint32_t>(clusters);
    layout.rootCluster = Le32(*sector, 96);
    layout.clusterSize = uint64_t{1} << (sectorShift + clusterShift);
    layout.table = (tableSector + (usesSecondTable ? tableSectors : 0)) << sectorShift;
    layout.data = dataSector << sectorShift;
    layout.end = sectors << sectorShift;
    return layout;
}

}  // namespace machine
