#include "machine/media/table/mbr_entries.h"

#include <set>

#include "machine/media/device/little_endian.h"
#include "machine/media/table/region.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

// Empty if it cannot be read or is of no such kind.
std::string TableSectorAt(const ImageFile& image, uint64_t offset) {
    std::string sector(diskSectorSize, '\0');
    if (!image.Read(offset, sector.data(), sector.size()) || Le16(sector, 510) != 0xAA55) return "";
    return sector;
}

// `base` is what the entry counts from.
MbrEntry EntryOf(const std::string& sector, uint64_t sectorOffset, size_t slot, uint64_t base,
                 uint64_t sectorSize) {
    const size_t at = mbrFirstEntry + slot * mbrEntrySize;
    return {.place = sectorOffset + at,
            .offset = base + Le32(sector, at + mbrStartAt) * sectorSize,
            .size = Le32(sector, at + mbrLengthAt) * sectorSize,
            .indicator = Byte(sector, at),
            .type = Byte(sector, at + mbrTypeAt)};
}

// Follows the links of logical partitions: the first entry of a link is the partition, the second one leads
// to the next link, from the start of the extended partition. Returns what is wrong; empty if nothing is.
std::string FollowChain(const ImageFile& image, const MbrEntry& extended, uint64_t sectorSize,
                        std::vector<MbrEntry>& logical) {
    constexpr size_t mostLinks = 256;  // no disk has as many; a made one could have millions
    std::set<uint64_t> visited;
    uint64_t link = extended.offset;
    while (visited.size() < mostLinks) {
        const std::string where = "at sector " + std::to_string(link / sectorSize);
        if (!visited.insert(link).second) return "the chain of logical partitions runs in a circle, " + where;
        if (!IsWithin({"", link, diskSectorSize}, {"", extended.offset, extended.size}))
            return "the chain of logical partitions leaves the extended partition, " + where;
        const std::string sector = TableSectorAt(image, link);
        if (sector.empty()) return "the chain of logical partitions is damaged, " + where;
        MbrEntry held = EntryOf(sector, link, 0, link, sectorSize);
        held.isLogical = true;
        held.slot = static_cast<uint32_t>(mbrSlots + 1 + logical.size());
        if (held.type != mbrUnused) logical.push_back(held);
        const MbrEntry next = EntryOf(sector, link, 1, extended.offset, sectorSize);
        if (next.type == mbrUnused) return "";
        link = next.offset;
    }
    return "the chain of logical partitions has more than " + std::to_string(mostLinks) + " links";
}

}  // namespace

bool MbrEntry::IsExtended() const {
    return PartitionTypeOf(type).extended;
}

std::string MbrSector(const ImageFile& image) {
    return TableSectorAt(image, 0);
}

bool NamesWholeMedium(const std::string& mbrSector) {
    for (size_t slot = 0; slot < mbrSlots && !mbrSector.empty(); ++slot) {
        const MbrEntry entry = EntryOf(mbrSector, 0, slot, 0, diskSectorSize);
        if (entry.type != mbrUnused && entry.offset == 0) return true;
    }
    return false;
}

MbrEntries MbrEntriesOf(const ImageFile& image, uint64_t sectorSize) {
    const std::string sector = MbrSector(image);
    MbrEntries found;
    std::vector<MbrEntry> logical;
    for (size_t slot = 0; slot < mbrSlots; ++slot) {
        MbrEntry entry = EntryOf(sector, 0, slot, 0, sectorSize);
        entry.slot = static_cast<uint32_t>(slot + 1);
        if (entry.type == mbrUnused) continue;
        found.entries.push_back(entry);
        if (!entry.IsExtended()) continue;
        const std::string problem = FollowChain(image, entry, sectorSize, logical);
        if (!problem.empty()) found.problems.push_back(problem);
    }
    found.entries.insert(found.entries.end(), logical.begin(), logical.end());
    return found;
}

}  // namespace machine
